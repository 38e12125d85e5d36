#include "transfer/image_buffers.h"

QByteArray gImageBuf(kImageSize + 1, '\0');
QByteArray gReadBuf(kImageSize + 1, '\0');
int gReadCount = 0;
QString gSaveFileName;

int fncCompareImage() { return gReadBuf == gImageBuf ? 0 : 1; }
