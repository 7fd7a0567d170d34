#!/usr/bin/env bash
# Installs the build, moves the result and uses it from there: catches a header or data file that is not installed,
# a path of the build or of the first prefix that was compiled in, and a package file that leads nowhere.
set -euo pipefail
cmake=$1 source=$2 build=$3 compiler=$4 sanitize=$5 python=${6:-}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*" >&2; exit 1; }

"$cmake" --install "$build" --prefix "$work/first" >/dev/null
mv "$work/first" "$work/moved here"
prefix="$work/moved here"

# Nothing but the sample hub and the moved tree is to be found from here on.
for name in $(compgen -e | grep -E '^(GDA_|ZENTOR_|GIT_)' || true); do unset "$name"; done
"$source/scripts/make-sample-hub" --product-data "$prefix/share/plaz/data" "$work/sample hub" >/dev/null
. "$work/sample hub/env.sh"
export HOME="$work"
cd "$work"

flags=${sanitize:+-fsanitize=$sanitize}
"$cmake" -S "$source/examples/embed" -B example -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" >configure.log 2>&1 || { cat configure.log; fail "find_package"; }
"$cmake" --build example >build.log 2>&1 || { cat build.log; fail "the example does not build"; }

example/list_hub install pin-report >listing.txt 2>messages.txt || { cat messages.txt; fail "the example does not run"; }
for line in "boards: Sample boards" "  aurora 2.0  Aurora Entwicklungsplatine" "  計測 1.0  計測ツール" \
  "  string-kit 1.0  Boîte à chaînes  (installed)"; do
  grep -qxF "$line" listing.txt || { cat listing.txt messages.txt; fail "the example does not list: $line"; }
done

# Each header stands alone, by the flags that pkg-config names.
flags=$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs plaz) || fail "pkg-config"
(cd "$prefix/include/plaz" && find . -name '*.h') >headers.txt
[ "$(wc -l <headers.txt)" -gt 20 ] || fail "few headers are installed"
number=0
while read -r header; do
  number=$((number + 1))
  echo "#include \"${header#./}\"" >"header_$number.cpp"
done <headers.txt
eval "'$compiler' -std=c++17 -fsyntax-only $flags header_*.cpp" || fail "an installed header does not stand alone"

"$prefix/bin/plaz" stores | grep -q tclscripts || fail "the installed program does not find the hub"

if [ -n "$python" ]; then # the module was built
  # The interpreter is not built with the sanitizers: their runtime has to be there before the module is.
  preload=${sanitize:+$("$compiler" -print-file-name=libasan.so):$("$compiler" -print-file-name=libstdc++.so)}
  PYTHONPATH="$prefix/lib/python3/dist-packages" LD_PRELOAD=$preload ASAN_OPTIONS=detect_leaks=0 \
    "$python" -B -c 'import plaz; print(plaz.stores())' | grep -q "plaz.Store tclscripts" ||
    fail "the installed module does not find the hub"
fi

find "sample hub/data" "$prefix/share/plaz/data/plaz" -maxdepth 99 -name '*.json' -not -path '*/schemas/*' \
  -not -name messages.json -print0 | xargs -0 "$prefix/bin/plaz" validate >validate.txt || { cat validate.txt; fail "a metadata file is not valid"; }
[ "$(wc -l <validate.txt)" -ge 20 ] || fail "few metadata files were checked"
