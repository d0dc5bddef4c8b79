#include <QDGui/pluginregistry.h>
