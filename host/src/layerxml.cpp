#include <QDGui/layer.h>
