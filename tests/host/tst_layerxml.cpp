#include <QDGui/geopainter.h>
#include <QDGui/rasterlayer.h>

#include <QColor>
#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Korvane::Map::Layer;
using Korvane::Map::RasterLayer;

/// A raster layer whose setters depend on each other the way those of a layer on an open file do.
class FileLayer : public RasterLayer
{
    Q_OBJECT
    Q_PROPERTY(double Contrast MEMBER contrast)
    Q_PROPERTY(bool Smooth MEMBER smooth)
    Q_PROPERTY(bool Progressive READ isProgressive WRITE setProgressive)
    Q_PROPERTY(QVector<qint32> BandList READ getBandList WRITE setBandList)
    Q_PROPERTY(Method ResampleMethod MEMBER method)
    Q_PROPERTY(QColor Outline MEMBER outline)
    Q_PROPERTY(QString Note MEMBER note)
    Q_PROPERTY(int Reopened READ getReopened)
    Q_PROPERTY(int Passing MEMBER passing STORED false)

public:
    enum class Method { Nearest = 0, Bilinear = 1 };
    Q_ENUM(Method)

    FileLayer()
        : RasterLayer(nullptr)
    {
    }

    QString getDataSource() const override { return source; }
    bool setDataSource(QString name) override
    {
        if (!QFile::exists(name))
            return false;
        source = name;
        setDescription(QFileInfo(name).fileName());
        return true;
    }
    QString getLastError() const override { return QStringLiteral("no such file"); }
    bool isProgressive() const { return progressive; }
    void setProgressive(bool wanted)
    {
        // Like a file that is opened anew: nothing without one, and the smoothing follows the resample method.
        if (source.isEmpty() || wanted == progressive)
            return;
        progressive = wanted;
        smooth = method == Method::Bilinear;
        ++reopened;
    }
    int getReopened() const { return reopened; }
    double getTransparency() const override { return transparency; }
    void setTransparency(double value) override { transparency = value; }
    QVector<int> getBandList() const override { return bands; }
    void setBandList(QVector<int> list) override { bands = list; }

    void setView(int, int, double, double, double, double) override {}
    QRectF getBounds() const override { return QRectF(0, 0, 1, -1); }
    bool isValid() const override { return !source.isEmpty(); }
    void paint(Korvane::GeoPainter &, const QRectF *, const QRect *) override {}
    double getCellSizeX() const override { return 1; }
    double getCellSizeY() const override { return -1; }
    int getNumberOfBands() const override { return 3; }
    QSize getSize() const override { return QSize(1, 1); }
    QString getCellType() const override { return QString(); }
    bool hasOpacity() const override { return false; }
    int getOpacityBandNumber() const override { return -1; }
    double getRotation() const override { return 0; }
    ColorSpace getColorSpace() const override { return RGB; }

    QString source;
    double contrast = 1;
    bool smooth = false;
    bool progressive = true;
    QVector<int> bands{0, 1, 2};
    Method method = Method::Nearest;
    QColor outline = Qt::cyan;
    QString note;
    double transparency = 1;
    int reopened = 0;
    int passing = 7;
};

class TestLayerXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void restoresEverything();
    void followsAProjectThatMoves_data();
    void followsAProjectThatMoves();
    void saysWhatCannotBeOpened();
    void survivesDamage_data();
    void survivesDamage();

private:
    /// Saves \a layer in a project in \a folder; returns the project's text.
    static QByteArray saved(Layer &layer, const QDir &folder);
    static bool restore(Layer &layer, const QByteArray &project, QDir folder, QString *error = nullptr);
    static QString makeFile(const QDir &folder, const QString &name);

    std::unique_ptr<QTemporaryDir> folder;
};

void TestLayerXml::init()
{
    folder = std::make_unique<QTemporaryDir>();
}

QByteArray TestLayerXml::saved(Layer &layer, const QDir &folder)
{
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("Layer"));
    document.appendChild(element);
    if (!layer.writeXML(element, document))
        return QByteArray();
    Layer::makeSourceRelative(element, folder);
    return document.toByteArray();
}

bool TestLayerXml::restore(Layer &layer, const QByteArray &project, QDir folder, QString *error)
{
    QDomDocument document;
    document.setContent(project);
    QDomNode node = document.documentElement();
    return layer.readXML(node, folder, error);
}

QString TestLayerXml::makeFile(const QDir &folder, const QString &name)
{
    folder.mkpath(QFileInfo(folder.filePath(name)).path());
    QFile file(folder.filePath(name));
    return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
}

void TestLayerXml::restoresEverything()
{
    FileLayer layer;
    QVERIFY(layer.setDataSource(makeFile(folder->path(), QStringLiteral("image.jp2"))));
    layer.setDescription(QStringLiteral("North <&> \"South\" 東京"));
    layer.setComments(QStringLiteral("two\nlines"));
    layer.setVisible(false);
    layer.setTransparency(1.0 / 3.0);
    layer.contrast = -0.1;
    layer.smooth = true; // Without bilinear resampling: re-opening resets it.
    layer.setProgressive(false);
    layer.smooth = true;
    layer.bands = {4, 0, 2, 5};
    layer.method = FileLayer::Method::Bilinear;
    layer.outline = QColor(1, 2, 3, 4);
    layer.note = QStringLiteral("  blanks and ä  ");
    layer.passing = 99;
    layer.method = FileLayer::Method::Nearest;

    FileLayer restored;
    QString error;
    QVERIFY2(restore(restored, saved(layer, folder->path()), folder->path(), &error), qPrintable(error));
    QCOMPARE(restored.getUid(), layer.getUid());
    QCOMPARE(restored.getDescription(), layer.getDescription());
    QCOMPARE(restored.getComments(), layer.getComments());
    QCOMPARE(restored.isVisible(), false);
    QCOMPARE(restored.source, layer.source);
    QCOMPARE(restored.transparency, layer.transparency);
    QCOMPARE(restored.contrast, layer.contrast);
    QCOMPARE(restored.progressive, false);
    QCOMPARE(restored.smooth, true);
    QCOMPARE(restored.bands, layer.bands);
    QCOMPARE(restored.method, layer.method);
    QCOMPARE(restored.outline, layer.outline);
    QCOMPARE(restored.note, layer.note);
    QCOMPARE(restored.passing, 7);
    QCOMPARE(restored.reopened, 1);
}

void TestLayerXml::followsAProjectThatMoves_data()
{
    QTest::addColumn<QString>("image");
    QTest::addColumn<bool>("isWidened");
    QTest::newRow("beside the project") << QStringLiteral("image.jp2") << false;
    QTest::newRow("in a folder above") << QStringLiteral("../data/image.jp2") << false;
    QTest::newRow("a name beyond ASCII") << QStringLiteral("Übersicht 東京.jp2") << false;
    QTest::newRow("such a name as widened bytes") << QStringLiteral("Übersicht 東京.jp2") << true;
}

void TestLayerXml::followsAProjectThatMoves()
{
    QFETCH(QString, image);
    QFETCH(bool, isWidened);
    const QDir top(folder->path());
    QVERIFY(top.mkpath(QStringLiteral("old/project")));
    const QDir oldProject(top.filePath(QStringLiteral("old/project")));
    FileLayer layer;
    const QString file = QDir::cleanPath(makeFile(oldProject, image));
    layer.source = isWidened ? QString::fromLatin1(file.toUtf8()) : file;
    const QByteArray project = saved(layer, oldProject);
    QVERIFY(QDir(top).rename(QStringLiteral("old"), QStringLiteral("new")));

    FileLayer restored;
    QVERIFY(restore(restored, project, QDir(top.filePath(QStringLiteral("new/project")))));
    QVERIFY(restored.source.startsWith(top.filePath(QStringLiteral("new/"))));
}

void TestLayerXml::saysWhatCannotBeOpened()
{
    FileLayer layer;
    layer.setDataSource(makeFile(folder->path(), QStringLiteral("image.jp2")));
    layer.contrast = 1.5;
    const QByteArray project = saved(layer, folder->path());
    QVERIFY(QFile::remove(layer.source));

    FileLayer restored;
    QString error;
    QVERIFY(!restore(restored, project, folder->path(), &error));
    QVERIFY2(error.contains(QStringLiteral("image.jp2")) && error.contains(QStringLiteral("no such file")),
             qPrintable(error));
    QCOMPARE(restored.contrast, 1.5);
    QCOMPARE(restored.getUid(), layer.getUid());
}

void TestLayerXml::survivesDamage_data()
{
    QTest::addColumn<QByteArray>("project");
    QTest::addColumn<bool>("isLayer");
    QTest::newRow("another element") << QByteArray("<Other/>") << false;
    QTest::newRow("only a source") << QByteArray("<Layer><DataSource/></Layer>") << true;
    QTest::newRow("values of other types")
        << QByteArray("<Layer><DataSource/><Properties><Property name='Contrast'>much</Property>"
                      "<Property name='Progressive'>perhaps</Property><Property name='BandList'>1 x 2</Property>"
                      "<Property name='ResampleMethod'>Bilinear</Property><Property name='Outline'>blueish</Property>"
                      "<Property name='objectName'>evil</Property><Property name='Reopened'>3</Property>"
                      "<Property name='NoSuch'>1</Property></Properties></Layer>")
        << true;
}

void TestLayerXml::survivesDamage()
{
    QFETCH(QByteArray, project);
    QFETCH(bool, isLayer);
    FileLayer layer;
    const QString uid = layer.getUid();
    QString error;
    QCOMPARE(restore(layer, project, folder->path(), &error), isLayer);
    QCOMPARE(error.isEmpty(), isLayer);
    QCOMPARE(layer.getUid(), uid);
    QCOMPARE(layer.contrast, 1.0);
    QCOMPARE(layer.progressive, true);
    QCOMPARE(layer.bands, QVector<int>({0, 1, 2}));
    QCOMPARE(layer.outline, QColor(Qt::cyan));
    QVERIFY(layer.objectName().isEmpty());
}

QTEST_MAIN(TestLayerXml)
#include "tst_layerxml.moc"
