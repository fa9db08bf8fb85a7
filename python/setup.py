"""The wheel of one platform: nothing in it depends on one interpreter, but the native libraries on the machine.

scripts/wheel.sh lays the folder out, with the libraries in kestrune/_lib, and names the platform and the version.
"""

import os
from pathlib import Path

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

PLATFORM = os.environ.get("KESTRUNE_WHEEL_PLATFORM")
if not PLATFORM or not list((Path(__file__).parent / "kestrune" / "_lib").glob("*kestrune_arrays*")):
    raise SystemExit("kestrune is built by scripts/wheel.sh of its repository, which adds the native libraries")


class NativeDistribution(Distribution):
    """Holds compiled libraries, though no extension modules."""

    def has_ext_modules(self) -> bool:
        return True


class PlatformWheel(bdist_wheel):
    """Tagged py3-none-PLATFORM."""

    def get_tag(self) -> tuple[str, str, str]:
        return "py3", "none", PLATFORM


setup(version=os.environ["KESTRUNE_VERSION"], cmdclass={"bdist_wheel": PlatformWheel}, distclass=NativeDistribution)
