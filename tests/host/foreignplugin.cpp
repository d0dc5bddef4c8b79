#include <QObject>

/// A plug-in of the toolkit, but of some other program.
class ForeignPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.example.Foreign")
};

#include "foreignplugin.moc"
