// The root of the library's Qt resources: dialog templates in "dialogs",
// button images in "bitmaps".
#include "kxrxlibrary.h"

extern "C" __attribute__((visibility("default"))) const char* kxresQtRoot()
{
    return ":/KdMLStyleRes";
}
