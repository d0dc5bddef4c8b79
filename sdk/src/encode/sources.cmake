set(stage_sources boxes.cpp codestreamassembler.cpp filestart.cpp geotifftags.cpp httileencoder.cpp imagesample.cpp
    imagewriter.cpp outputfile.cpp part1tileencoder.cpp stepchooser.cpp tileencoder.cpp tilesplitter.cpp workers.cpp)
