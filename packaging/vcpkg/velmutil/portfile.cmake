# An overlay port: builds the checkout that it lies in. docs/compilers.md has the command; vcpkg's cache knows this folder
# and not the rest of the checkout, hence its --no-binarycaching.
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY ONLY_DYNAMIC_CRT) # objects cross the border: both sides share one runtime

get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS -DVELM_BUILD_TESTS=OFF -DVELM_BUILD_TOOLS=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME VelmUtil CONFIG_PATH lib/cmake/VelmUtil)
vcpkg_copy_pdbs()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
# The project has no licence text of its own yet; picojson's header carries its own.
set(VCPKG_POLICY_SKIP_COPYRIGHT_CHECK enabled)
