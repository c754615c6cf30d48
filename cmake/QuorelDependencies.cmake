# Every library that the program calls. All of them are Debian packages; packages/debian.txt names
# the packages, and `make setup` installs them.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core DBus Network Svg Test Widgets)
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig>=2.14)
pkg_check_modules(FFTW REQUIRED IMPORTED_TARGET fftw3f>=3.3)
pkg_check_modules(FLAC REQUIRED IMPORTED_TARGET flac>=1.4)
pkg_check_modules(RAPIDJSON REQUIRED IMPORTED_TARGET RapidJSON>=1.1)
pkg_check_modules(SOXR REQUIRED IMPORTED_TARGET soxr>=0.1.3)
pkg_check_modules(TAGLIB REQUIRED IMPORTED_TARGET taglib>=1.13)
pkg_check_modules(ZLIB REQUIRED IMPORTED_TARGET zlib)
pkg_check_modules(PULSE REQUIRED IMPORTED_TARGET libpulse>=16)
# FFmpeg is opened when a file first needs it, so only its headers are used: never link these.
pkg_check_modules(LIBAV REQUIRED libavcodec>=59.37 libavutil>=57.28)
