#include <QDGui/system.h>
