#include "system/cp932.h"

#include <windows.h>

QString fromCp932(const QByteArray& bytes) {
    constexpr UINT kCodePage = 932;
    const int size = static_cast<int>(bytes.size());
    std::wstring text(static_cast<std::size_t>(size), L'\0');
    const int count = ::MultiByteToWideChar(kCodePage, 0, bytes.constData(), size, text.data(), size);
    return QString::fromWCharArray(text.data(), count);
}
