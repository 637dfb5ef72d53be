"""Makes a wheel, as pip asks for it (PEP 517): CMake builds and installs, and what it installed for
Python is packed, with the library beside the module.

Settings are variables of CMake, as in --config-settings=KESTRIN_WERROR=ON, and "build-dir", a build
to go on with."""

import base64
import hashlib
import os
import pathlib
import re
import subprocess
import sys
import sysconfig
import tempfile
import tomllib
import zipfile

HERE = pathlib.Path(__file__).parent
ROOT = HERE.parent


def _version():
    text = (ROOT / "CMakeLists.txt").read_text()
    return re.search(r"VERSION (\d+\.\d+\.\d+)", text)[1]


def _metadata():
    project = tomllib.loads((HERE / "pyproject.toml").read_text())["project"]
    head = (
        f"Metadata-Version: 2.1\nName: {project['name']}\nVersion: {_version()}\n"
        f"Summary: {project['description']}\nRequires-Python: {project['requires-python']}\n"
    )
    return head + "".join(f"Requires-Dist: {name}\n" for name in project["dependencies"])


def _install(folder, settings):
    """Builds and installs into the folder, and gives each file of the package with its place."""
    build, prefix = settings.pop("build-dir", None), folder / "prefix"
    if build is None:
        build = folder / "build"
        settings.setdefault("Python_EXECUTABLE", sys.executable)
    options = {
        "CMAKE_BUILD_TYPE": "Release",
        "KESTRIN_PYTHON": "ON",
        "KESTRIN_TESTS": "OFF",
        "KESTRIN_TOOLS": "OFF",
        **settings,
    }
    definitions = [f"-D{name}={value}" for name, value in options.items()]
    for command in (
        ["cmake", "-S", ROOT, "-B", build, *definitions],
        ["cmake", "--build", build, "--parallel", str(os.cpu_count())],
        ["cmake", "--install", build, "--prefix", prefix],
    ):
        subprocess.run(command, check=True)
    (core,) = prefix.glob("**/kestrindb/_core.*.so")
    yield from ((path, f"kestrindb/{path.name}") for path in sorted(core.parent.iterdir()))
    major = _version().split(".")[0]
    (library,) = prefix.glob(f"lib*/**/liblKestrinDb.so.{major}")
    yield library, f"kestrindb/{library.name}"


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    info = pathlib.Path(metadata_directory, f"kestrindb-{_version()}.dist-info")
    info.mkdir()
    (info / "METADATA").write_text(_metadata())
    return info.name


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    python = "cp{}{}".format(*sys.version_info)
    platform = re.sub(r"[-.]", "_", sysconfig.get_platform())
    tag = f"{python}-{python}-{platform}"
    name = f"kestrindb-{_version()}"
    info = f"{name}.dist-info"
    record = []

    def add(wheel, place, content):
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
        record.append(f"{place},sha256={digest},{len(content)}\n")
        wheel.writestr(place, content)

    file_name = f"{name}-{tag}.whl"
    target = pathlib.Path(wheel_directory, file_name)
    with tempfile.TemporaryDirectory() as folder, zipfile.ZipFile(
        target, "w", zipfile.ZIP_DEFLATED
    ) as wheel:
        for path, place in _install(pathlib.Path(folder), dict(config_settings or {})):
            add(wheel, place, path.read_bytes())
        add(wheel, f"{info}/METADATA", _metadata().encode())
        about = f"Wheel-Version: 1.0\nGenerator: build_wheel\nRoot-Is-Purelib: false\nTag: {tag}\n"
        add(wheel, f"{info}/WHEEL", about.encode())
        wheel.writestr(f"{info}/RECORD", "".join(record) + f"{info}/RECORD,,\n")
    return file_name
