#include "ports/command_line.h"

#include "ports/com_links.h"
#include "ports/language.h"
#include "ports/report.h"

#include <charconv>

namespace ports {

namespace {

constexpr Text kHelp{R"(usage: dravolt-ports                  lists the serial devices and the COM links
       dravolt-ports set N DEVICE     assigns this device to COM port N (1 to 16)
       dravolt-ports remove N         removes the link of COM port N
       dravolt-ports --help           shows this

COM port N is the link com<N> in the folder ports beside this program, or else beside the program itself, where
dravolt looks for it. DEVICE is a name in /dev such as ttyUSB0, or a path. The link points to the stable name of
the adapter where it has one, so that it works wherever the adapter is plugged in; for an adapter without a serial
number of its own, it points to the socket.

Exit status: 0 done; 1 not done, or no device that you may open; 2 wrong arguments.
)",
                     R"(使い方: dravolt-ports                  シリアルデバイスと COM リンクの一覧を表示
        dravolt-ports set N デバイス   COM ポート N (1～16) をこのデバイスに割り当て
        dravolt-ports remove N         COM ポート N のリンクを削除
        dravolt-ports --help           この説明を表示

COM ポート N は、このプログラムと同じ場所にあるフォルダー ports のリンク com<N> です。ここになければ、
プログラムと同じフォルダーのリンク com<N> です。dravolt はこのリンクを使用します。
デバイスは ttyUSB0 のような /dev 内の名前、またはパスで指定します。アダプターに固定名があれば、リンクは固定名を指すため、
どこに接続しても有効です。固有の製造番号がないアダプターの場合は、接続位置を指します。

終了ステータス: 0 完了、1 未完了または開けるデバイスがない、2 引数の誤り。
)"};
constexpr Text kWrong{"wrong arguments; see dravolt-ports --help",
                      "引数に誤りがあります。dravolt-ports --help を参照してください"};
constexpr Text kIsSet{"COM%1 is now %2. The program uses it when Setting.INI says COM=%1.",
                      "COM%1 を %2 に割り当てました。Setting.INI で COM=%1 と設定すると使用されます。"};
constexpr Text kIsPlace{
    "The adapter has no serial number of its own, so others of its kind have the same name. The link names the socket "
    "instead; always plug the adapter in there.",
    "このアダプターには固有の製造番号がなく、同じ種類のアダプターと名前が重なります。そのため、リンクは接続位置を指しま"
    "す。"
    "必ず同じ USB 端子に接続してください。"};
constexpr Text kIsRemoved{"COM%1 no longer has a link.", "COM%1 のリンクを削除しました。"};

/// @return 0 if the text is not a COM port number
int portNumber(const std::string& text) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end && number >= 1 && number <= kMaxPorts ? number : 0;
}

int change(const Computer& computer, int number, const std::vector<std::string>& arguments, Output& out) {
    if (arguments[0] == "set") {
        const NewTarget target = setComLink(computer, number, arguments[2]);
        out << said(kIsSet, {arguments[1], target.path}) << '\n';
        if (target.isPlace)
            out << said(kIsPlace) << '\n';
    } else {
        removeComLink(computer, number);
        out << said(kIsRemoved, {arguments[1]}) << '\n';
    }
    return 0;
}

}  // namespace

int run(const Computer& computer, const std::vector<std::string>& arguments, Output& out, Output& error) {
    if (arguments.empty())
        return report(computer, out) ? 0 : 1;
    const std::string& command = arguments[0];
    if (command == "--help" && arguments.size() == 1) {
        out << kHelp;
        return 0;
    }
    const bool isChange = (command == "set" && arguments.size() == 3) || (command == "remove" && arguments.size() == 2);
    const int number = isChange ? portNumber(arguments[1]) : 0;
    if (number == 0) {
        error << "dravolt-ports: " << said(kWrong) << '\n';
        return 2;
    }
    try {
        return change(computer, number, arguments, out);
    } catch (const Refusal& refusal) {
        error << "dravolt-ports: " << refusal.what() << '\n';
        explainFolder(computer, error);
        return 1;
    }
}

}  // namespace ports
