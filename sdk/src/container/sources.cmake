set(stage_sources boxreader.cpp colourbox.cpp fragmenttable.cpp headerboxes.cpp jp2structure.cpp structurereader.cpp)
