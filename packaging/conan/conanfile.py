"""Builds and packages the tree that this recipe lies in, for Conan 2."""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir
from conan.tools.scm import Version

required_conan_version = ">=2.0"


class ZVMathConan(ConanFile):
    name = "zvmath"
    description = "Numerical library whose results are fixed to the bit"
    topics = ("numerics", "statistics", "linear-algebra", "reproducibility")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False]}
    default_options = {"shared": True, "fPIC": True}
    implements = ["auto_shared_fpic"]

    def tree(self):
        return os.path.normpath(os.path.join(self.recipe_folder, "..", ".."))

    def set_version(self):
        project = load(self, os.path.join(self.tree(), "CMakeLists.txt"))
        self.version = re.search(r"project\(ZVMath VERSION ([0-9.]+)", project).group(1)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "CHANGELOG.md", "cmake/*", "include/*", "src/*",
                        "companion/*", "packaging/copyright", "packaging/debian/*"):
            copy(self, pattern, src=self.tree(), dst=self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        # Compiled in; only zvmath/lasso.h shows it to programs.
        self.requires("eigen/3.4.0", transitive_headers=True)

    def validate(self):
        check_min_cppstd(self, 17)
        if self.settings.os != "Linux" or self.settings.arch not in ("x86_64", "armv8"):
            raise ConanInvalidConfiguration("ZVMath builds on 64-bit Linux, x86-64 or Arm")
        oldest = {"gcc": "9", "clang": "10"}.get(str(self.settings.compiler))
        if oldest is None or Version(self.settings.compiler.version) < oldest:
            raise ConanInvalidConfiguration("ZVMath needs GCC 9 or Clang 10, or later")

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["ZVMATH_TESTS"] = False
        toolchain.cache_variables["ZVMATH_EXAMPLES"] = False
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "copyright", src=os.path.join(self.source_folder, "packaging"),
             dst=os.path.join(self.package_folder, "licenses"))
        # Conan writes its own for programs.
        rmdir(self, os.path.join(self.package_folder, "lib", "cmake"))
        rmdir(self, os.path.join(self.package_folder, "lib", "pkgconfig"))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "ZVMath")
        self.cpp_info.set_property("pkg_config_name", "zvmath")
        companion = self.cpp_info.components["companion"]
        companion.set_property("cmake_target_name", "ZVMath::companion")
        companion.libs = ["zvcompanion"]
        zvmath = self.cpp_info.components["zvmath"]
        zvmath.set_property("cmake_target_name", "ZVMath::zvmath")
        zvmath.libs = ["zvmath"]
        zvmath.requires = ["companion", "eigen::eigen"]
