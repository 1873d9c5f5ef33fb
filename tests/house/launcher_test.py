#!/usr/bin/env python3
"""The launcher ./quillmere on machines of every kind, played by stand-ins.

A copy of the launcher stands in a folder of its own; cmake, dpkg-query, apt-get, sudo and id are small
scripts that note how they were called. So nothing is installed and nothing is compiled.
"""

import os
import shutil
import subprocess
import tempfile
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

# Configuring does nothing; building writes a program that tells how it was called.
CMAKE = r"""#!/bin/bash
echo "cmake $*" >>"$LOG"
[ -z "${BUILD_FAILS:-}" ] || { echo "error: no such thing"; exit 1; }
[ "$1" = --build ] || exit 0
mkdir -p "$2/cli"
cat >"$2/cli/quillmere" <<'PROGRAM'
#!/bin/bash
printf 'home=%s\n' "$QUILLMERE_HOME"
printf '[%s]' "$@"
printf '\n'
exit 42
PROGRAM
chmod +x "$2/cli/quillmere"
"""
DPKG_QUERY = r"""#!/bin/bash
for package in "${@:3}"; do
    case " ${MISSING:-} " in
    *" $package "*) [ -e "$LOG.installed" ] && echo "ii  $package" ;;
    *) echo "ii  $package" ;;
    esac
done
exit 1
"""
APT_GET = r"""#!/bin/bash
echo "apt-get $*" >>"$LOG"
case "$*" in
*--simulate*) [ -e "$LOG.updated" ] || [ -n "${LISTS_FRESH:-}" ] ;;
*update*) touch "$LOG.updated"; echo "talk of apt" ;;
*install*) [ -z "${INSTALL_FAILS:-}" ] || exit 100; touch "$LOG.installed"; echo "talk of apt" ;;
esac
"""
SUDO = r"""#!/bin/bash
echo "sudo" >>"$LOG"
exec "$@"
"""
ID = r"""#!/bin/bash
echo "${USER_NUMBER:-0}"
"""


class Launcher(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = os.path.realpath(folder.name)
        self.clone = os.path.join(self.folder, "a clone")
        self.stubs = os.path.join(self.folder, "stubs")
        self.log = os.path.join(self.folder, "log")
        for path in (self.stubs, os.path.join(self.clone, "scripts"), self.path("core")):
            os.makedirs(path)
        shutil.copy(os.path.join(ROOT, "quillmere"), self.clone)
        for name in ("setup.sh", "packages-build.txt"):
            shutil.copy(os.path.join(ROOT, "scripts", name), self.path("scripts"))
        self.write("core/types.h", "")
        self.write("CMakeLists.txt", "")
        for name, text in {
            "cmake": CMAKE,
            "dpkg-query": DPKG_QUERY,
            "apt-get": APT_GET,
            "sudo": SUDO,
            "id": ID,
        }.items():
            self.stub(name, text)

    def path(self, name):
        return os.path.join(self.clone, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def stub(self, name, text):
        path = os.path.join(self.stubs, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(path, 0o755)

    def launch(self, *arguments, program=None, cwd=None, **environment):
        """Runs the launcher; self.calls is what the stand-ins noted."""
        open(self.log, "w", encoding="utf-8").close()
        # Only the stand-ins and the plain tools: no sudo of the machine is to be found.
        plain = os.path.join(self.folder, "plain")
        if not os.path.isdir(plain):
            os.makedirs(plain)
            for tool in (
                "bash env readlink dirname basename find touch mkdir mv rm cat sed grep nproc flock "
                "chmod true"
            ).split():
                os.symlink(shutil.which(tool), os.path.join(plain, tool))
        variables = {"PATH": f"{self.stubs}:{plain}", "LOG": self.log, **environment}
        result = subprocess.run(
            [program or self.path("quillmere"), *arguments],
            capture_output=True,
            encoding="utf-8",
            stdin=subprocess.DEVNULL,
            cwd=cwd or self.folder,
            env=variables,
            timeout=60,
        )
        with open(self.log, encoding="utf-8") as file:
            self.calls = file.read()
        return result

    def test_first_call_builds_and_runs(self):
        result = self.launch("solve", "8/8 w - -", "--moves", "2", "")
        self.assertEqual(result.returncode, 42)
        self.assertEqual(
            result.stdout, f"home={self.clone}\n[solve][8/8 w - -][--moves][2][]\n"
        )
        self.assertIn("--preset release", self.calls)
        self.assertIn("building", result.stderr)
        self.assertNotIn("apt-get", self.calls)

    def test_second_call_calls_no_tool(self):
        self.launch()
        result = self.launch("x")
        self.assertEqual((result.returncode, result.stderr, self.calls), (42, "", ""))

    def test_other_home_is_kept(self):
        result = self.launch(QUILLMERE_HOME="/elsewhere")
        self.assertIn("home=/elsewhere\n", result.stdout)

    def changed(self, change):
        self.launch()
        stamp = os.stat(self.path("build/release/.built")).st_mtime
        while time.time() <= stamp + 0.02:  # past the grain of file times
            pass
        change()
        self.launch()
        return "cmake --build" in self.calls

    def test_changes_are_built(self):
        self.assertTrue(self.changed(lambda: self.write("core/types.h", "new")))
        self.assertTrue(self.changed(lambda: self.write("core/more.h", "")))
        self.assertTrue(self.changed(lambda: os.remove(self.path("core/more.h"))))
        self.assertTrue(self.changed(lambda: self.write("CMakeLists.txt", "new")))
        self.assertTrue(self.changed(lambda: os.remove(self.path("build/release/cli/quillmere"))))

    def test_changes_elsewhere_are_not(self):
        for folder in ("tests", "docs", "samples"):
            os.makedirs(self.path(folder))
        self.assertFalse(self.changed(lambda: self.write("tests/new.cpp", "")))
        self.assertFalse(self.changed(lambda: self.write("options.ini", "[chess]")))
        # What the program keeps for the user is no source.
        os.makedirs(self.path("SolvedProblemsDB"))
        self.assertFalse(self.changed(lambda: self.write("SolvedProblemsDB/a.cpdb", "")))

    def test_any_folder_and_symlink(self):
        link = os.path.join(self.folder, "link")
        os.symlink(self.path("quillmere"), link)
        self.assertEqual(self.launch(program=link, cwd="/").returncode, 42)
        self.assertEqual(self.launch(program="../quillmere", cwd=self.path("core")).returncode, 42)

    def test_missing_packages_are_installed_as_root(self):
        result = self.launch(MISSING="cmake ninja-build", LISTS_FRESH="1")
        self.assertEqual(result.returncode, 42)
        self.assertIn("installing: cmake ninja-build\n", result.stderr)
        self.assertIn("--no-install-recommends cmake ninja-build\n", self.calls)
        self.assertIn("DPkg::Lock::Timeout=300", self.calls)
        self.assertNotIn("update", self.calls)
        self.assertNotIn("sudo", self.calls)
        self.assertNotIn("talk of apt", result.stdout)

    def test_lists_are_updated_first_where_they_are_missing(self):
        result = self.launch(MISSING="cmake")
        self.assertEqual(result.returncode, 42)
        self.assertIn("update\n", self.calls)
        self.assertLess(self.calls.index("update\n"), self.calls.index("install -y"))

    def test_sudo_where_it_is_not_root(self):
        result = self.launch(MISSING="cmake", LISTS_FRESH="1", USER_NUMBER="1000")
        self.assertEqual(result.returncode, 42)
        self.assertIn("sudo\n", self.calls)

    def test_neither_root_nor_sudo(self):
        os.remove(os.path.join(self.stubs, "sudo"))
        result = self.launch(MISSING="cmake", USER_NUMBER="1000")
        self.assertEqual((result.returncode, result.stdout), (5, ""))
        self.assertIn("neither root nor sudo", result.stderr)
        self.assertIn("apt-get install -y --no-install-recommends cmake\n", result.stderr)
        self.assertNotIn("cmake --", self.calls)

    def test_install_that_fails(self):
        result = self.launch(MISSING="cmake", INSTALL_FAILS="1")
        self.assertEqual((result.returncode, result.stdout), (5, ""))
        self.assertIn("could not be installed", result.stderr)

    def test_other_systems_are_taken_as_they_are(self):
        os.remove(os.path.join(self.stubs, "dpkg-query"))
        result = self.launch()
        self.assertEqual(result.returncode, 42)
        self.assertIn("not Debian", result.stderr)

    def test_build_that_fails(self):
        result = self.launch(BUILD_FAILS="1")
        self.assertEqual((result.returncode, result.stdout), (5, ""))
        self.assertIn("error: no such thing", result.stderr)
        self.assertIn("the build failed", result.stderr)
        # It is tried again the next time.
        self.assertEqual(self.launch().returncode, 42)


if __name__ == "__main__":
    unittest.main()
