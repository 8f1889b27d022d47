#!/usr/bin/env python3
"""Tests cmake/FindOpenPegasus.cmake with a stand-in of two small libraries and their headers, laid out as an OpenPegasus
is: found below OPENPEGASUS_ROOT and in the paths of CMake, with the macros that the headers need, and a clear message
when a part is missing.

usage: find_openpegasus_test.py REPOSITORY CMAKE CXX
"""

import os
import pathlib
import platform
import subprocess
import sys
import tempfile

REPOSITORY = pathlib.Path(sys.argv[1])
CMAKE = sys.argv[2]
CXX = sys.argv[3]

HEADERS = {
    # As the real one, it does not compile without the name of the platform.
    "Common/Config.h": f"""#pragma once
#ifndef PEGASUS_PLATFORM_LINUX_{platform.machine().upper()}_GNU
#error "<Pegasus/Common/Config.h>: Unsupported Platform"
#endif
#ifndef PEGASUS_HAS_SSL
#error "without TLS"
#endif
namespace Pegasus {{ const char* CommonPart(); }}
""",
    "Client/CIMClient.h": """#pragma once
#include <Pegasus/Common/Config.h>
namespace Pegasus { const char* ClientPart(); }
""",
}
SOURCES = {"pegcommon": "CommonPart", "pegclient": "ClientPart"}

failures = 0
checks = 0


def check(condition, what, output=""):
    global failures, checks
    checks += 1
    if not condition:
        failures += 1
        print(f"FAILED: {what}\n{output}", file=sys.stderr)


def run(*command, **variables):
    environment = {name: value for name, value in os.environ.items() if name != "OPENPEGASUS_ROOT"}
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          timeout=300, env={**environment, **variables})
    # CMake breaks the lines of its messages wherever they get too long.
    return done.returncode, " ".join(done.stdout.split())


def make_stand_in(root, lib="lib"):
    for name, text in HEADERS.items():
        path = root / "include/Pegasus" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
    (root / lib).mkdir()
    for library, function in SOURCES.items():
        source = root / f"{library}.cpp"
        source.write_text(f'namespace Pegasus {{ const char* {function}() {{ return "{library}"; }} }}\n')
        subprocess.run([CXX, "-shared", "-fPIC", source, "-o", root / lib / f"lib{library}.so"], check=True)


def configure(build, *options, project=REPOSITORY / "tests/find_openpegasus", **variables):
    return run(CMAKE, "-S", str(project), "-B", str(build), "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={CXX}",
               f"-DCMAKE_MODULE_PATH={REPOSITORY / 'cmake'}", *options, **variables)


def again(build, *options, **variables):
    """Configures a folder anew that knows the compiler already, as if nothing had been looked for yet."""
    return configure(build, "-UOpenPegasus_*", "-UOPENPEGASUS_ROOT", "-UCMAKE_PREFIX_PATH", *options, **variables)


def test_found(work):
    root = work / "root"
    make_stand_in(root)
    build = work / "build"
    for name, options, variables in (
            ("OPENPEGASUS_ROOT in CMake", [f"-DOPENPEGASUS_ROOT={root}"], {}),
            ("OPENPEGASUS_ROOT in the environment", [], {"OPENPEGASUS_ROOT": str(root)}),
            ("CMAKE_PREFIX_PATH", [f"-DCMAKE_PREFIX_PATH={root}"], {}),
    ):
        status, output = again(build, *options, **variables)
        found = f"found: {root}/include {root}/lib/libpegclient.so {root}/lib/libpegcommon.so"
        check(status == 0 and found in output, name, output)

    status, output = run(CMAKE, "--build", str(build))
    check(status == 0, "the program compiles with the macros and links", output)
    status, output = run(str(build / "program"))
    check(status == 0 and output == "pegclient and pegcommon", "the program runs with both libraries", output)

    root64 = work / "root64"
    make_stand_in(root64, "lib64")
    status, output = again(build, f"-DOPENPEGASUS_ROOT={root64}")
    check(status == 0 and f"{root64}/lib64/libpegclient.so" in output, "libraries in lib64", output)

    for part, variable in (("include/Pegasus/Client/CIMClient.h", "OpenPegasus_INCLUDE_DIR"),
                           ("lib/libpegclient.so", "OpenPegasus_CLIENT_LIBRARY"),
                           ("lib/libpegcommon.so", "OpenPegasus_COMMON_LIBRARY")):
        (root / part).rename(work / "away")
        status, output = again(build, f"-DOPENPEGASUS_ROOT={root}")
        (work / "away").rename(root / part)
        check(status != 0 and f"missing: {variable})" in output and "set OPENPEGASUS_ROOT to the folder" in output,
              f"without {part}", output)


def test_choice(work):
    """The whole project stops for what it is told to use and does not find."""
    (work / "empty").mkdir()
    status, output = configure(work / "whole", "-DORVANE_PEGASUS=system", f"-DOPENPEGASUS_ROOT={work / 'empty'}",
                               "-DORVANE_TESTS=OFF", project=REPOSITORY)
    check(status != 0 and "set OPENPEGASUS_ROOT to the folder that holds include/Pegasus and lib" in output,
          "ORVANE_PEGASUS=system with an empty OPENPEGASUS_ROOT", output)
    status, output = configure(work / "whole", "-DORVANE_PEGASUS=systen", "-DORVANE_TESTS=OFF", project=REPOSITORY)
    check(status != 0 and "ORVANE_PEGASUS is 'systen'; use auto, bundled or system" in output, "a misspelt choice",
          output)


def main():
    with tempfile.TemporaryDirectory() as folder:
        test_found(pathlib.Path(folder))
        test_choice(pathlib.Path(folder))
    print(f"{checks - failures} passed, {failures} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
