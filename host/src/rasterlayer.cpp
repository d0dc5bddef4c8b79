#include <QDGui/rasterlayer.h>
