#include "transfer/image_buffers.h"

QByteArray gImageBuf(kImageSize + 1, '\0');
