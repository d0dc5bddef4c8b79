#include <QDGui/mapview.h>
