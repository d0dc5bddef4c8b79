set(stage_sources
    canvas.cpp
    mainheader.cpp
)
