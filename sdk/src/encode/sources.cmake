set(stage_sources boxes.cpp codestreamassembler.cpp geotifftags.cpp imagewriter.cpp outputfile.cpp tileencoder.cpp)
