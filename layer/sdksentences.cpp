// Sentences of the SDK's that a person meets when an opening fails: here they come into the catalogues. What the layer
// shows is looked up by the SDK's own words.

#include <QtGlobal>

namespace Korvane {

[[maybe_unused]] static constexpr const char *kSdkSentences[] = {
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "Images that reach beyond 2147483647 cells are not supported."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "JPEG 2000 compound documents are not supported."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "Motion JPEG 2000 files are not supported."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The JPEG 2000 codestream ends within its main header."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The XRV file ends before its version."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The XRV file has no version."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer",
                      "The codestream of the XRV file does not hold the cells that the file describes."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "What the XRV file says of its cells is damaged."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The codestream lies in another file, which is not supported."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The codestream lies in scattered pieces, which is not supported."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The file ends before its codestream begins."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The file has no JPEG 2000 codestream."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The file is empty."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The file is not a JPEG 2000 file."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The file is not an XRV image."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The fragment table of the codestream is damaged."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "The server sent a page or a message, not an image."),
    QT_TRANSLATE_NOOP("Korvane::XRVJP2kLayer", "This file is not an XRV image that this library can read."),
};

} // namespace Korvane
