"""Builds the Python package for pip: CMake does the work, this packs what it installs into a wheel.

It needs nothing but the standard library, so that `pip install .` works without a network.
"""

import base64
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import sysconfig
import zipfile

_root = pathlib.Path(__file__).resolve().parent.parent
_name = "grouptracker"


def _version():
    return re.search(r"project\(GroupTracker VERSION ([\d.]+)", (_root / "CMakeLists.txt").read_text()).group(1)


def _tag():
    version = f"cp{sys.version_info.major}{sys.version_info.minor}"
    return f"{version}-{version}-{sysconfig.get_platform().replace('-', '_').replace('.', '_')}"


def _metadata():
    return "\n".join([
        "Metadata-Version: 2.1", f"Name: {_name}", f"Version: {_version()}",
        "Summary: Groups out of the tracks of people: who walks with whom, since when, and how sure that is",
        "Requires-Python: >=3.9", "Requires-Dist: numpy", 'Provides-Extra: tables',
        'Requires-Dist: pandas; extra == "tables"', "Description-Content-Type: text/markdown", "",
        (_root / "README.md").read_text()])


def _wheel():
    return f"Wheel-Version: 1.0\nGenerator: {_name}\nRoot-Is-Purelib: false\nTag: {_tag()}\n"


def _install():
    """Builds and installs the module with the platform's libraries beside it; returns the folder."""
    build = _root / "build" / f"wheel-{_tag()}"
    stage = build / "stage"
    subprocess.run(["cmake", "-S", _root, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                    "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=12", "-DGROUPTRACKER_TESTS=OFF",
                    "-DGROUPTRACKER_BENCHMARKS=OFF", "-DGROUPTRACKER_PYTHON=ON", "-DGROUPTRACKER_PYTHON_DIR=.",
                    f"-DCMAKE_INSTALL_LIBDIR={_name}", f"-DPython3_EXECUTABLE={sys.executable}",
                    *os.environ.get("GROUPTRACKER_CMAKE_ARGS", "").split()], check=True)
    subprocess.run(["cmake", "--build", build, "--target", "python_module"], check=True)
    shutil.rmtree(stage, ignore_errors=True)  # of what an earlier version had, nothing may be packed
    for component in ("mox", "kel", "python"):
        subprocess.run(["cmake", "--install", build, "--prefix", stage, "--component", component], check=True)
    return stage


def _is_packed(path):
    """A wheel has no links: of a library only the file of the name under which it is looked for."""
    return path.is_file() and re.search(r"\.so\.\d+\.", path.name) is None


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    stage = _install()
    info = f"{_name}-{_version()}.dist-info"
    files = {str(path.relative_to(stage)): path.read_bytes()
             for path in sorted((stage / _name).iterdir()) if _is_packed(path)}
    files[f"{info}/METADATA"] = _metadata().encode()
    files[f"{info}/WHEEL"] = _wheel().encode()
    record = []
    for name, content in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
        record.append(f"{name},sha256={digest},{len(content)}\n")
    files[f"{info}/RECORD"] = ("".join(record) + f"{info}/RECORD,,\n").encode()
    wheel = f"{_name}-{_version()}-{_tag()}.whl"
    with zipfile.ZipFile(pathlib.Path(wheel_directory) / wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in files.items():
            archive.writestr(name, content)
    return wheel


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("build from a checkout")
