#include "commandline.h"

#include "views/pictures.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <QVector>

#include <cmath>

namespace Viewer {

namespace {

const QString kScreenshot = QStringLiteral("screenshot");
const QString kSize = QStringLiteral("size");
const QString kExtent = QStringLiteral("extent");
const QString kDescribe = QStringLiteral("describe");
const QString kSettings = QStringLiteral("settings");
const QString kWindow = QStringLiteral("window");
const QString kHelp = QStringLiteral("help");
const QString kVersion = QStringLiteral("version");

void addOptions(QCommandLineParser *parser)
{
    parser->setApplicationDescription(QStringLiteral(
        "Shows very large wavelet-compressed images from files and image servers.\n"
        "Without --screenshot, --window and --describe the program opens its window and stays.\n"
        "Exit status: 0 when all went well, 1 when a source or a picture failed, 2 for a wrong command line, "
        "3 when a picture shows a damaged source as well as can be."));
    parser->addOptions({
        {kScreenshot,
         QStringLiteral("Open the sources, wait until every layer is complete, write the map as a picture, exit. "
                        "The ending tells the format, png or jpg; without one it is PNG."),
         QStringLiteral("PICTURE")},
        {kSize,
         QStringLiteral("Size of that picture in pixels (default 1024x768). With --window: of the window's picture."),
         QStringLiteral("WxH")},
        {kExtent,
         QStringLiteral("World rectangle to show: top left, bottom right (default: all of the first layer, fitted)."),
         QStringLiteral("X1,Y1,X2,Y2")},
        {kDescribe, QStringLiteral("Write what each layer and its pages say to standard output: one JSON object per "
                                   "source, each on a line of its own, in the order of the sources; exit. A source "
                                   "that cannot be opened gives an object with \"source\" and \"error\".")},
        {kSettings, QStringLiteral("Use this settings file instead of your own."), QStringLiteral("FILE")},
        {kWindow, QStringLiteral("Like --screenshot, but the whole main window with its docks."),
         QStringLiteral("PICTURE")},
        {{QStringLiteral("h"), kHelp}, QStringLiteral("Show this help, exit.")},
        {{QStringLiteral("v"), kVersion}, QStringLiteral("Show the version, exit.")},
    });
    parser->addPositionalArgument(
        QStringLiteral("sources"),
        QStringLiteral("Images (also .url files), addresses such as xrvp://host/path, or a project."),
        QStringLiteral("[FILE|ADDRESS ...]"));
}

CommandLine failed(const QString &sentence)
{
    CommandLine result;
    result.outcome = CommandLine::Outcome::Error;
    result.text = sentence;
    return result;
}

/// The first option given with an empty value, which would otherwise pass for one not given.
QString emptyOption(const QCommandLineParser &parser)
{
    for (const QString &name : {kScreenshot, kWindow, kSettings}) {
        if (parser.isSet(name) && parser.value(name).isEmpty())
            return name;
    }
    return QString();
}

CommandLine fromParser(const QCommandLineParser &parser)
{
    CommandLine result;
    result.sources = parser.positionalArguments();
    result.screenshotFile = parser.value(kScreenshot);
    result.windowFile = parser.value(kWindow);
    result.settingsFile = parser.value(kSettings);
    result.describe = parser.isSet(kDescribe);
    for (const QString &picture : {result.screenshotFile, result.windowFile}) {
        const QString wrongName = Pictures::checkName(picture);
        if (!wrongName.isEmpty())
            return failed(wrongName);
    }
    if (parser.isSet(kSize)) {
        result.hasPictureSize = true;
        result.pictureSize = CommandLine::parseSize(parser.value(kSize));
        if (!result.pictureSize.isValid())
            return failed(QStringLiteral("\"%1\" is not a size such as 1024x768 (1 to %2 pixels each way).")
                              .arg(parser.value(kSize))
                              .arg(CommandLine::kMaxSide));
    }
    if (parser.isSet(kExtent)) {
        result.worldRect = CommandLine::parseWorldRect(parser.value(kExtent));
        if (result.worldRect.isNull())
            return failed(QStringLiteral("\"%1\" is not an extent X1,Y1,X2,Y2 with X1 < X2 and Y1 > Y2.")
                              .arg(parser.value(kExtent)));
    }
    if (result.sources.contains(QString()))
        return failed(QStringLiteral("The name of a file or address is empty."));
    if (result.sources.isEmpty() && (result.describe || !result.screenshotFile.isEmpty()))
        return failed(QStringLiteral("Name at least one file or address."));
    return result;
}

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    addOptions(&parser);
    if (!parser.parse(arguments))
        return failed(parser.errorText());
    if (parser.isSet(kHelp) || parser.isSet(kVersion)) {
        CommandLine result;
        result.outcome = parser.isSet(kHelp) ? Outcome::Help : Outcome::Version;
        result.text = parser.isSet(kHelp) ? parser.helpText()
                                          : QCoreApplication::applicationName() + QLatin1Char(' ') +
                                                QCoreApplication::applicationVersion() + QLatin1Char('\n');
        return result;
    }
    const QString empty = emptyOption(parser);
    if (!empty.isEmpty())
        return failed(QStringLiteral("The option --%1 needs a file name.").arg(empty));
    return fromParser(parser);
}

QSize CommandLine::parseSize(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("\\A([0-9]{1,5})[xX]([0-9]{1,5})\\z"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return QSize();
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    const bool inRange =
        size.width() >= 1 && size.height() >= 1 && size.width() <= kMaxSide && size.height() <= kMaxSide;
    return inRange ? size : QSize();
}

QRectF CommandLine::parseWorldRect(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 4)
        return QRectF();
    QVector<double> corner;
    for (const QString &part : parts) {
        bool ok = false;
        corner.append(part.trimmed().toDouble(&ok));
        if (!ok || !std::isfinite(corner.last()))
            return QRectF();
    }
    if (!(corner[0] < corner[2]) || !(corner[1] > corner[3]))
        return QRectF();
    return QRectF(corner[0], corner[1], corner[2] - corner[0], corner[3] - corner[1]);
}

} // namespace Viewer
