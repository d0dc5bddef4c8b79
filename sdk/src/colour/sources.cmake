set(stage_sources bandmap.cpp channels.cpp cmykconversion.cpp colourconversion.cpp colourmodel.cpp iccconversion.cpp
    labconversion.cpp linearconversion.cpp yccconversion.cpp)
