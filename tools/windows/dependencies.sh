#!/bin/bash
# Builds the libraries that the Windows programs need, out of Debian's source packages, once for each set of versions:
#
#   tools/windows/dependencies.sh        prints the folder that holds them
#
# They are kept in ${XDG_CACHE_HOME:-~/.cache}/qoaudio/windows/KEY; KEY is made of the versions and of this file.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
"$here/../setup.sh" windows >&2
export TRIPLET=x86_64-w64-mingw32
cores=$(nproc)
packages=(zlib libpng1.6 pixman cairo pugixml libogg libvorbis flac opus lame mpg123 libsndfile kissfft highway libsdl2)

# The machine's own sources of packages, asked for source packages. Its lists stay as they are.
apt_folder=$(mktemp -d)
trap 'rm -rf "$apt_folder"' EXIT
mkdir -p "$apt_folder"/{sources,lists/partial}
for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    [[ -f $list ]] && sed -n 's/^deb /deb-src /p' "$list" >> "$apt_folder/sources/machine.list"
done
for list in /etc/apt/sources.list.d/*.sources; do
    [[ -f $list ]] && sed 's/^Types:.*/Types: deb-src/' "$list" > "$apt_folder/sources/$(basename "$list")"
done
apt=(-o "Dir::Etc::sourcelist=/dev/null" -o "Dir::Etc::sourceparts=$apt_folder/sources" -o "Dir::State::lists=$apt_folder/lists" -o APT::Sandbox::User=root)
say() { printf '== %s\n' "$*" >&2; }

apt-get "${apt[@]}" update -qq >&2
# "URI NAME SHA256" of each file of all the packages.
files=$(apt-get "${apt[@]}" source --only-source --print-uris "${packages[@]}" |
    sed -n "s/^'\([^']*\)' \([^ ]*\) [0-9]* SHA256:\([0-9a-f]*\)$/\1 \2 \3/p")
key=$(cat <(printf '%s\n' "$files") "$here/dependencies.sh" "$here/toolchain.cmake" | sha256sum | cut -c1-16)
export QO_WINDOWS_PREFIX=${XDG_CACHE_HOME:-$HOME/.cache}/qoaudio/windows/$key
if [[ -f $QO_WINDOWS_PREFIX/complete ]]; then
    echo "$QO_WINDOWS_PREFIX"
    exit
fi
mkdir -p "$QO_WINDOWS_PREFIX"/{include,lib/pkgconfig,licences,build}
cd "$QO_WINDOWS_PREFIX/build"
say "downloading the sources of ${packages[*]}"
while read -r uri name hash; do
    [[ $name == *.asc || -f $name ]] && continue
    # A mirror may lack what Debian changed; the original has to be there.
    if ! /usr/lib/apt/apt-helper -qq -o APT::Sandbox::User=root download-file "$uri" "$name" "SHA256:$hash" >&2; then
        [[ $name != *.orig.* ]] || { say "$name can't be had"; exit 1; }
        rm -f "$name"
    fi
done <<<"$files"
for original in *.orig.tar.*; do
    package=${original%%_*}
    version=${original#*_}
    version=${version%.orig.*}
    [[ -d $package-source ]] && continue
    mkdir "$package-source"
    tar -xf "$original" -C "$package-source" --strip-components=1
    for changes in "${package}_$version"-*.debian.tar.*; do
        [[ -f $changes ]] && tar -xf "$changes" -C "$package-source"
        if [[ -f $package-source/debian/patches/series ]]; then
            (cd "$package-source" && QUILT_PATCHES=debian/patches quilt push -aq > /dev/null)
        fi
    done
    # What was patched is not newer than what was made from it: nobody has the autotools of each.
    find "$package-source" -type f -exec touch -d @1000000000 {} +
done
export PKG_CONFIG_LIBDIR=$QO_WINDOWS_PREFIX/lib/pkgconfig PKG_CONFIG_PATH=
export CPPFLAGS=-I$QO_WINDOWS_PREFIX/include LDFLAGS=-L$QO_WINDOWS_PREFIX/lib CFLAGS=-O2
cat > pkg-config <<'P'
#!/bin/sh
exec pkg-config --static "$@"
P
chmod +x pkg-config
export PKG_CONFIG=$PWD/pkg-config

build() { # <name> <folder> <command>: in the folder, with what it says in a file
    local began=$SECONDS
    [[ -f $QO_WINDOWS_PREFIX/licences/$1.txt ]] && return # built when this was broken off
    if ! (cd "$2" && "${@:3}") > "$1.log" 2>&1; then
        tail -30 "$1.log" >&2
        say "$1 can't be built: $PWD/$1.log"
        exit 1
    fi
    local licence
    for licence in "$2"/{debian/copyright,COPYING*,LICENSE*,LICENCE*}; do
        [[ -f $licence ]] && break
    done
    cp "$licence" "$QO_WINDOWS_PREFIX/licences/$1.txt"
    say "$1: $((SECONDS - began)) s"
}
by_configure() {
    ./configure --host=$TRIPLET --prefix="$QO_WINDOWS_PREFIX" --disable-shared --enable-static "$@" &&
        make -j"$cores" && make install
}
by_cmake() { # <source folder> <options>
    cmake -S "$1" -B windows -G Ninja -DCMAKE_TOOLCHAIN_FILE="$here/toolchain.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$QO_WINDOWS_PREFIX" -DBUILD_SHARED_LIBS=OFF -DBUILD_TESTING=OFF "${@:2}" &&
        ninja -C windows && ninja -C windows install
}
# Sources of a few files, without their own build.
archive() { # <library> <objects>
    $TRIPLET-ar rcs "$QO_WINDOWS_PREFIX/lib/lib$1.a" "${@:2}"
}
describe() { # <name> <version> <libraries> <flags>
    printf 'Name: %s\nDescription: %s\nVersion: %s\nLibs: -L%s/lib %s\nCflags: -I%s/include %s\n' "$1" "$1" "$2" \
        "$QO_WINDOWS_PREFIX" "$3" "$QO_WINDOWS_PREFIX" "$4" > "$QO_WINDOWS_PREFIX/lib/pkgconfig/$1.pc"
}
pugixml() {
    $TRIPLET-g++-posix -O2 -c src/pugixml.cpp -o pugixml.o && archive pugixml pugixml.o &&
        cp src/*.hpp "$QO_WINDOWS_PREFIX/include" && describe pugixml 1.13 -lpugixml ""
}
kissfft() {
    $TRIPLET-gcc -O2 -Dkiss_fft_scalar=float -c kiss_fft.c kiss_fftr.c && archive kissfft-float kiss_fft.o kiss_fftr.o &&
        mkdir -p "$QO_WINDOWS_PREFIX/include/kissfft" && cp ./*.h "$QO_WINDOWS_PREFIX/include/kissfft" &&
        describe kissfft-float 131 -lkissfft-float "-I$QO_WINDOWS_PREFIX/include/kissfft -Dkiss_fft_scalar=float"
}
zlib() {
    [[ -f zconf.h ]] || cp zconf.h.in zconf.h
    $TRIPLET-gcc -O2 -c adler32.c compress.c crc32.c deflate.c infback.c inffast.c inflate.c inftrees.c trees.c \
        uncompr.c zutil.c gzclose.c gzlib.c gzread.c gzwrite.c && archive z ./*.o &&
        cp zlib.h zconf.h "$QO_WINDOWS_PREFIX/include" && describe zlib 1.2.13 -lz ""
}
highway() {
    for source in aligned_allocator per_target targets print; do
        [[ -f hwy/$source.cc ]] || continue
        $TRIPLET-g++-posix -O2 -std=c++17 -I. -c hwy/$source.cc -o $source.o || return 1
    done
    archive hwy ./*.o && mkdir -p "$QO_WINDOWS_PREFIX/include/hwy" && cp -r hwy/. "$QO_WINDOWS_PREFIX/include/hwy" &&
        describe libhwy 1.0 -lhwy ""
}
# Without its test suite, which does not compile.
cairo() {
    ./configure --host=$TRIPLET --prefix="$QO_WINDOWS_PREFIX" --disable-shared --enable-static "$@" &&
        make -C src -j"$cores" install
}
# Without checks that want a library of the compiler's beside the programs.
opus() {
    CPPFLAGS="$CPPFLAGS -D_FORTIFY_SOURCE=0" by_configure --disable-stack-protector --disable-extra-programs --disable-doc
}
lame() { by_configure --disable-frontend --disable-decoder; }
mpg123() {
    by_configure --enable-modules=no --disable-components --enable-libmpg123 --with-cpu=x86-64
}

build zlib zlib-source zlib
build libpng libpng1.6-source by_configure
build pixman pixman-source by_configure --disable-gtk --disable-libpng
build cairo cairo-source cairo --disable-xlib --disable-xcb --disable-ft --disable-fc --disable-ps --disable-pdf \
    --disable-svg --disable-script --disable-interpreter --disable-trace --disable-gobject --disable-gtk-doc
build pugixml pugixml-source pugixml
build kissfft kissfft-source kissfft
build highway highway-source highway
build ogg libogg-source by_cmake . -DINSTALL_DOCS=OFF
build vorbis libvorbis-source by_cmake .
build flac flac-source by_cmake . -DBUILD_CXXLIBS=OFF -DBUILD_PROGRAMS=OFF -DBUILD_EXAMPLES=OFF -DBUILD_DOCS=OFF -DINSTALL_MANPAGES=OFF
build opus opus-source opus
build lame lame-source lame
build mpg123 mpg123-source mpg123
build sndfile libsndfile-source by_cmake . -DBUILD_PROGRAMS=OFF -DBUILD_EXAMPLES=OFF -DINSTALL_MANPAGES=OFF
build SDL2 libsdl2-source by_cmake . -DSDL_TEST=OFF -DSDL_SHARED=OFF

# Headers alone, the machine's own.
for headers in boost CLI nlohmann fmt; do ln -sfn "/usr/include/$headers" "$QO_WINDOWS_PREFIX/include/$headers"; done
describe fmt 9.1.0 "" -DFMT_HEADER_ONLY
for package in nlohmann_json CLI11; do
    mkdir -p "$QO_WINDOWS_PREFIX/lib/cmake/$package"
    printf 'add_library(%s::%s INTERFACE IMPORTED)\ntarget_include_directories(%s::%s INTERFACE %s/include)\n' "$package" "$package" \
        "$package" "$package" "$QO_WINDOWS_PREFIX" > "$QO_WINDOWS_PREFIX/lib/cmake/$package/${package}Config.cmake"
done
rm -rf "$QO_WINDOWS_PREFIX/build"
touch "$QO_WINDOWS_PREFIX/complete"
echo "$QO_WINDOWS_PREFIX"
