#include <QDGui/application.h>
