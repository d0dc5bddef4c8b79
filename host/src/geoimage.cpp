#include <QDGui/geoimage.h>
