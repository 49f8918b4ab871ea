"""Builds the extension of the Python package with CMake; everything else of it is in pyproject.toml."""
import pathlib
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext


class CMakeBuild(build_ext):
    """Builds the target qarv_python and puts its module where setuptools wants it."""

    def build_extension(self, ext):
        import pybind11

        source = pathlib.Path(__file__).resolve().parent
        build = pathlib.Path(self.build_temp).resolve()
        subprocess.run(
            ["cmake", "-S", source, "-B", build, "-DCMAKE_BUILD_TYPE=Release", "-DQARV_BUILD_PYTHON=ON",
             *(f"-DQARV_BUILD_{part}=OFF" for part in ("COMMAND", "TESTS", "EXAMPLES", "BITS")),
             f"-DPython3_EXECUTABLE={sys.executable}", f"-Dpybind11_DIR={pybind11.get_cmake_dir()}"],
            check=True)
        subprocess.run(["cmake", "--build", build, "--target", "qarv_python", "--parallel"], check=True)
        module = pathlib.Path(self.get_ext_fullpath(ext.name)).resolve()
        module.parent.mkdir(parents=True, exist_ok=True)
        self.copy_file(next((build / "python" / "qarv_wave").glob("_core.*")), module)


setup(ext_modules=[Extension("qarv_wave._core", sources=[])], cmdclass={"build_ext": CMakeBuild})
