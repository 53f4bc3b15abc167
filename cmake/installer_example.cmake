# The target installer-example: an installer package with the page in it, and the data beside it, in
# installer-example/ of the build folder. Only on macOS, whose tools it runs; docs/macos.md goes on from here.

set(example ${PROJECT_BINARY_DIR}/installer-example)
set(work ${PROJECT_BINARY_DIR}/installer-example-parts)

file(WRITE ${example}/.InstallationAttributes.dat
  "Mode = FullDownload\n"
  "InstallDataTitle = Installing Example Data\n"
  "InstallingData = Now installing the example data to:\\n\\n%s\n"
  "InstalledData = The example data is installed in:\\n\\n%s\\n\\nPress Continue.\n"
  "RelativePath = Data\n"
  "TotalSizeMillionsBytes = 1\n")
string(REPEAT "A sample library is a great number of files like this one.\n" 10000 text)
file(WRITE ${example}/Data/TANVO/Tessaphon/Example/example.db "${text}")
configure_file(resources/installer-example.xml.in ${work}/distribution.xml @ONLY)

# The plug-ins folder holds the page's bundle and the order of the Installer's sections.
add_custom_target(installer-example
  COMMAND ${CMAKE_COMMAND} -E make_directory ${work}/plugins
  COMMAND ditto ${PROJECT_BINARY_DIR}/InstallDataPane.bundle ${work}/plugins/InstallDataPane.bundle
  COMMAND ditto ${PROJECT_SOURCE_DIR}/resources/InstallerSections.plist ${work}/plugins/InstallerSections.plist
  COMMAND pkgbuild --nopayload --scripts ${PROJECT_SOURCE_DIR}/resources/installer-example
    --identifier com.tavenhall.example --version ${PROJECT_VERSION} ${work}/component.pkg
  COMMAND productbuild --distribution ${work}/distribution.xml --package-path ${work} --plugins ${work}/plugins
    "${example}/Tessaphon Example.pkg"
  VERBATIM)
add_dependencies(installer-example bundles)
