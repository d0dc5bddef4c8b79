#include <QDGui/xrvpbrowser.h>
