set(stage_sources)
