install(TARGETS raylume_dl raylume_platform ovdlreader)
