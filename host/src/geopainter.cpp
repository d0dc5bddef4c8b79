#include <QDGui/geopainter.h>
