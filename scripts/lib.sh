# What the scripts of this folder share. To be sourced, from the root of the project.
# shellcheck shell=bash

# Commands of the user's own environment decide nothing here: the presets name the compilers.
unset CXX CC CXXFLAGS CFLAGS LDFLAGS
# shellcheck disable=SC2034
jobs=$(nproc)
if [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER:-} ]] && command -v ccache > /dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

die() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

as_root() {
  if [[ $EUID -eq 0 ]]; then
    "$@"
  else
    command -v sudo > /dev/null || die "Installing packages takes root or sudo."
    sudo "$@"
  fi
}

apt_get() { as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y "$@"; }

# Which of the given Debian packages are not installed, one a line.
missing_packages() {
  local package
  for package in "$@"; do
    if [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2> /dev/null) != installed ]]; then
      echo "$package"
    fi
  done
}

# Says which Debian packages are needed, and installs those that are missing.
need_packages() {
  local missing
  echo "Debian packages that it needs: $*"
  if ! command -v dpkg-query apt-get > /dev/null; then
    echo "This is no Debian system: it goes on with what is there."
    return
  fi
  mapfile -t missing < <(missing_packages "$@")
  if [[ ${#missing[@]} -eq 0 ]]; then
    echo "All of them are installed."
    return
  fi
  echo "Installing with apt-get: ${missing[*]}"
  local install=(install --no-install-recommends "${missing[@]}")
  # The lists of a fresh system are empty, those of an old one name versions that are gone.
  if ! apt-get --simulate "${install[@]}" &> /dev/null || ! apt_get "${install[@]}"; then
    apt_get update
    apt_get "${install[@]}"
  fi
}

# The memory layout that the sanitizers of Clang 14 expect is not that of every newer kernel.
# shellcheck disable=SC2034
plain_memory=(setarch "$(uname -m)" -R)
"${plain_memory[@]}" true 2> /dev/null || plain_memory=()
