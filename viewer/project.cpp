#include "project.h"

namespace Viewer {

const QString kProjectSuffix = QStringLiteral(".qdproject");

bool isProjectFile(const QString &source)
{
    return source.endsWith(kProjectSuffix, Qt::CaseInsensitive);
}

} // namespace Viewer
