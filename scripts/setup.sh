# Set-up shared by ./quillmere, ./run-tests, .ci/run and scripts/lint. To be sourced, with `root`
# set to the folder of the project. Everything it says goes to standard error, so that standard
# output belongs to the program alone.

say() { printf '%s: %s\n' "${me:-quillmere}" "$*" >&2; }

# Wrong set-up is an internal fault of the program in the eyes of its callers: exit code 5.
die() {
    say "$*"
    exit 5
}

# packages_of LIST...: the names of the given package lists, one a line.
packages_of() {
    local list
    for list in "$@"; do
        sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$root/scripts/packages-$list.txt"
    done
}

# install_packages LIST...: installs what is missing of the lists.
install_packages() {
    local -a wanted missing=() run=()
    local package
    mapfile -t wanted < <(packages_of "$@")
    if ! command -v dpkg-query >/dev/null; then
        say "this is not Debian; taking it that the counterparts of these are installed: ${wanted[*]}"
        return 0
    fi
    # An unknown package makes dpkg-query fail as a whole, but it still lists the others.
    local installed
    installed=$(dpkg-query -W -f='${db:Status-Abbrev} ${Package}\n' "${wanted[@]}" 2>/dev/null |
        sed -n 's/^.i  *//p') || true
    for package in "${wanted[@]}"; do
        grep -qxF -- "$package" <<<"$installed" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    local -a options=(-o DPkg::Lock::Timeout=300 -qq)
    if [ "$(id -u)" != 0 ]; then
        if ! command -v sudo >/dev/null; then
            die "packages are missing, and there is neither root nor sudo to install them. Run as root:
  apt-get install -y --no-install-recommends ${missing[*]}"
        fi
        run=(sudo)
    fi
    run+=(env DEBIAN_FRONTEND=noninteractive apt-get "${options[@]}")
    say "installing: ${missing[*]}"
    local -a install=("${run[@]}" install -y --no-install-recommends "${missing[@]}")
    # A fresh machine has no package lists, and old lists name files that are gone.
    if apt-get "${options[@]}" install --simulate "${missing[@]}" </dev/null >/dev/null 2>&1 &&
        "${install[@]}" </dev/null >&2; then
        return 0
    fi
    "${run[@]}" update </dev/null >&2 || die "apt-get update failed; is there a network?"
    "${install[@]}" </dev/null >&2 || die "the packages could not be installed. Run as root:
  apt-get install -y --no-install-recommends ${missing[*]}"
}

# Compilers at work at the same time: one a processor, but no more than one for each GiB that is
# free, and never more than the group of processes may have.
build_jobs() {
    local jobs available limit used
    jobs=$(nproc)
    available=$(sed -n 's/^MemAvailable: *\([0-9]*\) kB/\1/p' /proc/meminfo)
    if [ -r /sys/fs/cgroup/memory.max ] && [ -r /sys/fs/cgroup/memory.current ]; then
        limit=$(cat /sys/fs/cgroup/memory.max)
        used=$(cat /sys/fs/cgroup/memory.current)
        if [ "$limit" != max ] && [ $(((limit - used) / 1024)) -lt "$available" ]; then
            available=$(((limit - used) / 1024))
        fi
    fi
    available=$((available / 1048576))
    [ "$available" -ge "$jobs" ] || jobs=$available
    [ "$jobs" -ge 1 ] || jobs=1
    echo "$jobs"
}

# build_preset PRESET [TARGET...]: configures and builds, incrementally and out of tree. On a
# terminal the progress is shown; elsewhere only the output of a build that fails.
build_preset() {
    local preset=$1 jobs
    shift
    local folder=$root/build/$preset
    local -a targets=()
    [ $# -eq 0 ] || targets=(--target "$@")
    mkdir -p "$folder" 2>/dev/null || die "cannot create the build folder $folder"
    jobs=$(build_jobs)
    # Two starts at the same time build one after the other.
    exec 9>"$folder/.lock"
    flock 9
    if [ -t 2 ]; then
        (cd "$root" && cmake --preset "$preset" >"$folder/configure.log" 2>&1) ||
            { cat "$folder/configure.log" >&2; return 1; }
        cmake --build "$folder" -j "$jobs" "${targets[@]}" 9>&- </dev/null >&2 || return 1
    else
        (cd "$root" && cmake --preset "$preset" &&
            cmake --build "$folder" -j "$jobs" "${targets[@]}" 9>&-) \
            </dev/null >"$folder/build.log" 2>&1 || { cat "$folder/build.log" >&2; return 1; }
    fi
    exec 9>&-
}
