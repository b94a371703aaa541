# Sourced by run-example and run-tests: installs the Debian packages that are missing.

# Each line: a package and a file that shows it is there.
zentor_build_packages() {
  cat <<'LIST'
g++ /usr/bin/g++
cmake /usr/bin/cmake
ninja-build /usr/bin/ninja
libcli11-dev /usr/include/CLI/CLI.hpp
libtomlplusplus-dev /usr/include/toml++/toml.h
libfmt-dev /usr/include/fmt/core.h
nlohmann-json3-dev /usr/include/nlohmann/json.hpp
LIST
}

zentor_test_packages() {
  cat <<'LIST'
libgtest-dev /usr/include/gtest/gtest.h
libgmock-dev /usr/include/gmock/gmock.h
LIST
}

zentor_bench_packages() {
  cat <<'LIST'
libeigen3-dev /usr/include/eigen3/Eigen/Core
LIST
}

zentor_lint_packages() {
  cat <<'LIST'
clang-format /usr/bin/clang-format
clang-tidy /usr/bin/clang-tidy
LIST
}

# ensure_packages LIST: returns when every package of the list is there; otherwise installs what is missing, or
# stops with the exact command to run.
ensure_packages() {
  local missing=() package file
  while read -r package file; do
    [ -e "$file" ] || missing+=("$package")
  done <<<"$1"
  [ ${#missing[@]} -eq 0 ] && return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
  local command="${as_root[*]:+${as_root[*]} }apt-get install -y --no-install-recommends ${missing[*]}"
  if ! command -v apt-get >/dev/null || { [ ${#as_root[@]} -gt 0 ] && ! command -v sudo >/dev/null; }; then
    echo "Missing Debian packages. As root, run:" >&2
    echo "  apt-get update && apt-get install -y --no-install-recommends ${missing[*]}" >&2
    exit 2
  fi
  echo "Installing Debian packages: ${missing[*]}"
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update -qq && DEBIAN_FRONTEND=noninteractive \
         "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 15 "$log" >&2
    rm -f "$log"
    echo "The packages could not be installed. Run this, then try again:" >&2
    echo "  $command" >&2
    exit 2
  fi
  rm -f "$log"
}

# quietly COMMAND...: shows the output only when the command fails.
quietly() {
  local log status=0
  log=$(mktemp)
  "$@" >"$log" 2>&1 || status=$?
  [ $status -eq 0 ] || tail -n 60 "$log" >&2
  rm -f "$log"
  return $status
}
