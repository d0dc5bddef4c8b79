#include <QDGui/mapview.h>

#include <QApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const Korvane::Map::MapView view;
    std::printf("%d layers\n", view.getLayerCount());
}
