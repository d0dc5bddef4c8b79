#include <QDGui/stringutil.h>
