#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr const char* kFileName = ".InstallationAttributes.dat";

bool isUtf16(std::string_view bytes) { return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"); }

// What stands before the first newline is a single line to the page, whatever an editor makes of it.
bool hasOldLineEnds(std::string_view bytes) {
  return bytes.find('\n') == std::string_view::npos && bytes.find('\r') < bytes.find_last_not_of(" \t\r\n");
}

void checkPlace(const CheckedSet& checked, Diagnostics& diagnostics) {
  const std::string folder = checked.plan.packageFolder;
  if (!checked.plan.attributes.isFilePresent()) {
    diagnostics.add(
        "attributes-missing", {checked.shown(fs::path(folder) / kFileName)},
        _("There is no .InstallationAttributes.dat beside the package or one folder above, so the page shows "
          "its built-in texts and asks for one disc."));
    return;
  }
  const fs::path above = fs::path(folder) / ".." / kFileName;
  std::error_code error;
  if (fs::exists(above, error) && checked.plan.attributes.path() != above) {
    diagnostics.add(
        "attributes-twice", {checked.shown(above)},
        _("The page reads the .InstallationAttributes.dat beside the package and ignores this one."));
  }
}

// A mark before a comment does no harm.
void checkByteOrderMark(const CheckedSet& checked, const AttributesPiece& first, Diagnostics& diagnostics) {
  if (!first.parts.key.starts_with(kByteOrderMark)) {
    return;
  }
  if (const AttributesKey* key = knownKey(first.parts.key.substr(kByteOrderMark.size()))) {
    diagnostics.add("byte-order-mark", checked.attributesPlace(&first),
                    format(_("The byte-order mark before {0} is part of the key, so the page does not "
                             "recognise the key: {1}."),
                           {key->name, missingKeyEffect(key->name)}));
  }
}

void checkBytes(const CheckedSet& checked, const AttributesPiece& piece, Diagnostics& diagnostics) {
  if (piece.text.find('\0') != std::string_view::npos) {
    diagnostics.add("nul-byte", checked.attributesPlace(&piece),
                    _("A NUL byte ends the line, so the page ignores the rest of it."));
  }
  if (piece.isCut && !piece.continuesLine) {
    diagnostics.add("line-too-long", checked.attributesPlace(&piece),
                    _("The page reads at most 2047 bytes of a line, so it truncates this text and treats the "
                      "rest as another line."));
  }
  const std::string_view value = piece.parts.value;
  const std::size_t carriageReturn = value.find('\r');
  if (carriageReturn < value.find_last_not_of(" \t\r") &&
      value.find_last_not_of(" \t\r") != std::string_view::npos) {
    diagnostics.add("carriage-return", checked.attributesPlace(&piece),
                    format(_("A carriage return ends the value, so the page shows {0} and ignores the rest."),
                           {quotedText(value.substr(0, carriageReturn))}));
  }
  const AttributesKey* key = knownKey(piece.parts.key);
  if (key != nullptr && key->kind == KeyKind::text && !piece.isCut && !isValidUtf8(value)) {
    diagnostics.add(
        "text-not-utf8", checked.attributesPlace(&piece),
        format(_("The value of {0} is not UTF-8, so the page shows wrong letters or nothing."), {key->name}));
  }
}

}  // namespace

void checkAttributesFile(const CheckedSet& checked, Diagnostics& diagnostics) {
  checkPlace(checked, diagnostics);
  const AttributesReading& attributes = checked.plan.attributes;
  if (attributes.pieces().empty()) {
    return;
  }
  const Place firstLine = checked.attributesPlace(&attributes.pieces().front());
  if (isUtf16(attributes.bytes())) {
    diagnostics.add(
        "byte-order-mark", firstLine,
        _("The file is UTF-16, in which the page finds no key, so it behaves as if there were no file."));
    return;
  }
  checkByteOrderMark(checked, attributes.pieces().front(), diagnostics);
  if (hasOldLineEnds(attributes.bytes())) {
    diagnostics.add(
        "carriage-return", firstLine,
        _("The lines end in carriage returns only, so the page sees one line and only its first key."));
    return;
  }
  for (const AttributesPiece& piece : attributes.pieces()) {
    checkBytes(checked, piece, diagnostics);
  }
}

}  // namespace tavenhall
