#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>

namespace Ui {
class XRVJP2kPreferencesClass;
}

/// The page about the SDK's caches and the defaults of new layers. What a person changes is kept in the page until
/// onSavePrefs() writes it to the host's settings store; the SDK reads it at the next start. GUI thread.
class XRVJP2kPreferences : public QWidget
{
    Q_OBJECT

public:
    /// What the page finds around it.
    struct Surroundings
    {
        quint64 memory = 0;                                  ///< of the machine, in megabytes; 0 where it is not known
        std::function<bool(const QString &name)> removeFile; ///< false for a file that stays
    };

    explicit XRVJP2kPreferences(QWidget *parent = nullptr);
    explicit XRVJP2kPreferences(Surroundings found, QWidget *parent = nullptr);
    ~XRVJP2kPreferences() override;

public Q_SLOTS:
    /// Fills all widgets from what the page holds.
    void init();
    /// For the host, when the preferences are accepted.
    void onSavePrefs();
    /// Of the memory cache, whatever the name says.
    void onCacheDirSliderMove(int value);
    void onDiskCacheSliderMove(int value);
    void onEnableXRVPCache(bool checked);
    void onChooseXRVPCacheDir(bool checked);
    void onClipPercent(int value);
    void onUseBilinear(bool checked);
    void onUseResilientDecoding(bool checked);
    void onUseAdaptiveRendering(bool checked);
    void onUseTexturing(bool checked);
    void onUseWinHTTPInXRVP(bool checked);
    void onAlwaysOpenProgressive(bool checked);
    void onClearDiskCache(bool checked);
    void onViewFiles(bool checked);
    void onDefaults(bool checked);
    void onLogXrv(bool bLogXrv);

private:
    Q_DISABLE_COPY(XRVJP2kPreferences)

    void readSettings();
    void connectWidgets();
    void showCaches();
    void showLayerDefaults();
    QStringList cacheFiles() const;
    quint64 cacheBytesUsed() const;

    std::unique_ptr<Ui::XRVJP2kPreferencesClass> ui;
    const Surroundings surroundings;
    QString cacheFolder;
    QString userAgent;
    // Sizes are in megabytes.
    quint64 diskCacheSize = 0;
    quint64 memoryCacheSize = 0;
    qint64 totalMemory = 0;
    quint64 maximumMemory = 0;
    quint64 recommendedMemory = 0;
    bool textureDither = false;
    bool streamCacheEnabled = false;
    bool openProgressive = false;
    bool resilientDecoding = false;
    bool optimizeNonProgressive = false;
    bool nearestNeighbour = false;
    bool adaptiveRendering = false;
    bool useWinHttp = false;
    bool logSdkEvents = false;
    int clipPercent = 0;
};
