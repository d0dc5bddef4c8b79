set(stage_sources boxes.cpp codestreamassembler.cpp filestart.cpp geotifftags.cpp imagewriter.cpp outputfile.cpp tileencoder.cpp)
