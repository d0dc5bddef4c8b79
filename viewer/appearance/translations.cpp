#include "translations.h"

#include <QDGui/application.h>

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

namespace Viewer {

Translations::Translations()
{
    const QString locale = QLocale().name();
    if (toolkit.load(QLatin1String("qtbase_") + locale, QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&toolkit);
    // A package of the program may bring the toolkit's texts along in its own folder.
    own = Korvane::Application::instance()->initializeTranslations(
        {QStringLiteral("qtbase"), QStringLiteral("qdgui"), QStringLiteral("qdviewer")}, locale);
}

} // namespace Viewer
