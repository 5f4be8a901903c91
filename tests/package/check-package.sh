#!/usr/bin/env bash
# Checks the installed kaldo the way a user meets it, in steps that share
# one work folder per way of installing:
#   check-package.sh build WORK BUILD_DIR    builds the package with CPack into
#                                            WORK/out and unpacks it into WORK/root
#   check-package.sh session WORK            runs the unpacked kaldo, then a moved copy
#   check-package.sh manual WORK SOURCE_DIR  the manual page beside --help and README
#   check-package.sh lintian WORK            lintian finds no error
#   check-package.sh install WORK BUILD_DIR  installs with 'cmake --install' under the
#                                            prefix /opt/kaldo into the scratch root
#                                            WORK (DESTDIR) and runs that kaldo
set -euo pipefail

fail() { echo "check-package: $*" >&2; exit 1; }

step=$1
work=$(realpath -m "$2")
root=$work/root
kaldo=$root/usr/bin/kaldo

# The installed program run with nothing of the build in its environment.
run_kaldo() {
    local program=$1; shift
    env -i PATH=/usr/bin:/bin HOME="$work/home" QT_QPA_PLATFORM=offscreen "$program" "$@"
}

# "WIDTHxHEIGHT" of a PNG picture, from its header.
png_size() {
    local bytes
    read -ra bytes < <(od -An -tu1 -j16 -N8 "$1")
    echo "$(((bytes[0] << 24) + (bytes[1] << 16) + (bytes[2] << 8) + bytes[3]))x$(((bytes[4] << 24) + (bytes[5] << 16) + (bytes[6] << 8) + bytes[7]))"
}

# The files a desktop user meets under an installation's PREFIX: each entry
# of the desktop file names what the installation holds, and a MIME
# database made of its type definitions knows .dxf and .mln files.
check_desktop_files() {
    local prefix=$1 share=$1/share entry exec icon size globs
    entry=$share/applications/kaldo.desktop
    [ -f "$entry" ] || fail "no desktop entry"
    exec=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$entry")
    [ -x "$prefix/bin/$exec" ] || fail "the desktop entry starts '$exec', which the installation does not hold"
    grep -qx 'Categories=Graphics;Engineering;' "$entry" || fail "the desktop entry's categories"
    icon=$(sed -n 's/^Icon=//p' "$entry")
    [ -f "$share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "no scalable icon '$icon'"
    for size in 16 32 48 256; do
        [ "$(png_size "$share/icons/hicolor/${size}x${size}/apps/$icon.png")" = "${size}x${size}" ] ||
            fail "no $size x $size icon"
    done
    grep -qx 'MimeType=image/vnd.dxf;' "$entry" || fail "the desktop entry opens no DXF drawing"
    rm -rf "$work/mime"
    mkdir -p "$work/mime/packages"
    cp "$share/mime/packages/kaldo.xml" "$work/mime/packages/"
    update-mime-database "$work/mime" || fail "update-mime-database refuses the MIME types"
    globs=$(grep -v '^#' "$work/mime/globs2")
    grep -q ':image/vnd.dxf:\*\.dxf$' <<<"$globs" || fail "no association of .dxf with image/vnd.dxf"
    grep -q ':application/x-mln:\*\.mln$' <<<"$globs" || fail "no MIME type of .mln files"
    [ -f "$share/man/man1/kaldo.1.gz" ] || fail "no manual page"
    [ -f "$share/doc/kaldo/copyright" ] || fail "no copyright file"
}

# The program library and the module under ROOT find the core library
# under ROOT, not the build's; the launcher's run path leads to the program
# library under ROOT.
check_own_core_library() {
    local root=$1 binaries binary libraries launcher runpath
    mapfile -t binaries < <(find "$root" -name libkaldoprogram.so -o -name KdMLStyle.krx)
    [ "${#binaries[@]}" = 2 ] || fail "no one program library and one module under $root: ${binaries[*]}"
    for binary in "${binaries[@]}"; do
        # Read whole first: grep -q leaving a pipe early would fail it
        # under pipefail whenever ldd is still writing.
        libraries=$(ldd "$binary")
        grep -q "libkaldocore.so => $root/" <<<"$libraries" ||
            fail "$binary finds its core library outside $root: $(grep kaldocore <<<"$libraries")"
    done
    launcher=$(find "$root" -path "*/bin/kaldo")
    runpath=$(readelf -d "$launcher" | sed -n 's/.*Library runpath: \[\(.*\)\]/\1/p')
    [ -f "${runpath//\$ORIGIN/$(dirname "$launcher")}/libkaldoprogram.so" ] ||
        fail "$launcher does not find its program library under $root (run path $runpath)"
}

# A session of PROGRAM: the module from its modules folder, a wall in a
# style of its Support folder's KALDO.mln, saved as DRAWING.
draw_wall() {
    local program=$1 drawing=$2 out
    out=$(run_kaldo "$program" --script - --save "$drawing" 2>"$work/session.err" <<'EOF'
MLINE
ST
WALL_200MM
KALDO
0,0
4000,0
4000,3000

EOF
) || { cat "$work/session.err"; fail "the session of $program failed"; }
    [ ! -s "$work/session.err" ] || { cat "$work/session.err"; fail "the session of $program complained"; }
    grep -q "Current settings: Justification = Top, Scale = 1.0000, Style = WALL_200MM" <<<"$out" ||
        { echo "$out"; fail "MLINE did not take the style WALL_200MM"; }
}

# PROGRAM opens DRAWING and finds the wall in it.
reopen_wall() {
    local program=$1 drawing=$2 out
    out=$(run_kaldo "$program" "$drawing" --script - 2>&1 <<'EOF'
LIST
2000,0

EOF
) || { echo "$out"; fail "$program did not reopen $drawing"; }
    grep -q "^MLINE " <<<"$out" && grep -q "style: wall_200mm" <<<"$out" &&
        grep -q "vertex 2: X=4000.0000  Y=3000.0000" <<<"$out" ||
        { echo "$out"; fail "the reopened drawing does not hold the wall"; }
}

build() {
    local build_dir=$1 deb depends
    rm -rf "$work"
    mkdir -p "$work/out" "$work/home"
    cpack --config "$build_dir/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" ||
        { cat "$work/cpack.log"; fail "cpack failed"; }
    deb=$(echo "$work"/out/kaldo_*.deb)
    [ -f "$deb" ] || fail "cpack made no kaldo_*.deb"
    dpkg-deb -x "$deb" "$root"
    # Dependencies from the libraries the program links: Qt's widgets, and
    # no library of the build itself.
    depends=$(dpkg-deb -f "$deb" Depends)
    echo "Depends: $depends"
    grep -q 'libqt6widgets6' <<<"$depends" || fail "Depends lacks Qt's widgets library"
    grep -q 'kaldo' <<<"$depends" && fail "Depends names a library of the package itself"
    check_desktop_files "$root/usr"
}

session() {
    local version moved
    version=$(dpkg-deb -f "$work"/out/kaldo_*.deb Version)
    [ "$(run_kaldo "$kaldo" --version)" = "kaldo $version" ] || fail "kaldo --version does not say $version"
    check_own_core_library "$root"
    draw_wall "$kaldo" "$work/room.dxf"
    # Reopened by the installation moved elsewhere as a whole.
    moved=$work/moved
    rm -rf "$moved"
    cp -a "$root" "$moved"
    check_own_core_library "$moved"
    reopen_wall "$moved/usr/bin/kaldo" "$work/room.dxf"
}

# 'cmake --install' under another prefix than the package's, into a
# scratch root as packagers do it (DESTDIR).
install_check() {
    local build_dir=$1 prefix=$work/opt/kaldo
    rm -rf "$work"
    mkdir -p "$work/home"
    DESTDIR=$work cmake --install "$build_dir" --prefix /opt/kaldo >"$work/install.log" ||
        { cat "$work/install.log"; fail "cmake --install failed"; }
    check_desktop_files "$prefix"
    check_own_core_library "$work"
    draw_wall "$prefix/bin/kaldo" "$work/room.dxf"
    reopen_wall "$prefix/bin/kaldo" "$work/room.dxf"
}

# The long options a text names: the option lines of --help (indented by
# two) and of the manual page's OPTIONS (by seven), the first column of
# README's options table.
long_options() { grep -oE -- "^ {$1}(-h, )?--[a-z0-9-]+" | grep -oE -- '--[a-z0-9-]+' | sort -u; }
help_options() { long_options 2; }
manual_options() { sed -n '/^OPTIONS/,/^[A-Z]/p' | long_options 7; }
readme_options() { grep -E '^\| `--' | cut -d'|' -f2 | grep -oE -- '--[a-z0-9-]+' | sort -u; }
# Exit codes: the numbers of --help's "Exit codes:" line, the manual page's
# EXIT STATUS entries and README's "Exit codes:" paragraph.
help_exit_codes() { grep '^Exit codes:' | grep -oE '\b[0-9]+ [a-z]' | grep -oE '^[0-9]+'; }
manual_exit_codes() { sed -n '/^EXIT STATUS/,/^[A-Z]/p' | grep -oE '^ {7}[0-9]+( |$)' | tr -d ' '; }
readme_exit_codes() { sed -n '/^Exit codes:/,/^$/p' | tr '\n' ' ' | grep -oE '\b[0-9]+ (for|when)' | grep -oE '^[0-9]+'; }

manual() {
    local source_dir=$1 page help
    page=$(env -i PATH=/usr/bin:/bin MANPATH="$root/usr/share/man" MANWIDTH=100 LANG=C.UTF-8 \
           man --warnings -P cat kaldo 2>"$work/man.err") || { cat "$work/man.err"; fail "man kaldo failed"; }
    [ ! -s "$work/man.err" ] || { cat "$work/man.err"; fail "man kaldo warned"; }
    for section in NAME SYNOPSIS DESCRIPTION OPTIONS "EXIT STATUS" FILES ENVIRONMENT; do
        grep -q "^$section\$" <<<"$page" || fail "the manual page has no section $section"
    done
    help=$(run_kaldo "$kaldo" --help)
    diff <(help_options <<<"$help") <(manual_options <<<"$page") ||
        fail "the options of kaldo --help (<) and of the manual page (>) differ"
    diff <(help_options <<<"$help") <(readme_options <"$source_dir/README.md") ||
        fail "the options of kaldo --help (<) and of README's table (>) differ"
    [ -n "$(help_exit_codes <<<"$help")" ] || fail "kaldo --help names no exit codes"
    diff <(help_exit_codes <<<"$help") <(manual_exit_codes <<<"$page") ||
        fail "the exit codes of kaldo --help (<) and of the manual page (>) differ"
    diff <(help_exit_codes <<<"$help") <(readme_exit_codes <"$source_dir/README.md") ||
        fail "the exit codes of kaldo --help (<) and of README (>) differ"
}

lintian_check() {
    # Errors fail; warnings and notes are shown.
    lintian --fail-on error "$work"/out/kaldo_*.deb
}

case $step in
    build) build "$3" ;;
    session) session ;;
    manual) manual "$3" ;;
    lintian) lintian_check ;;
    install) install_check "$3" ;;
    *) fail "unknown step '$step'" ;;
esac
