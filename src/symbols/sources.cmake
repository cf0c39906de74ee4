target_sources(vantrel PRIVATE)
