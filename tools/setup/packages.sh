# The Debian packages that each part of the work needs; sourced by setup.sh.
# Everything not listed comes along as a dependency.

# Both builds, native and Windows, with the libraries, Google Test and what the tests run programs under.
packages_build="g++ cmake ninja-build g++-mingw-w64-i686-posix
    libboost-filesystem1.81-dev libcli11-dev nlohmann-json3-dev libstb-dev libdtl-dev googletest
    strace xz-utils clang-format clang-tidy"

# Running the Windows programs: 32-bit Wine, a display without a screen, fonts for its windows.
packages_wine="wine wine32:i386 xvfb fonts-liberation fonts-wine"

# The libraries that the benchmark compares us with.
packages_bench="libbenchmark-dev libpugixml-dev libtinyxml2-dev"

# libFuzzer and the sanitizers of clang.
packages_fuzz="clang libclang-rt-14-dev"
