#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/check/key_effects.h"
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

void checkPlace(const CheckedSet& checked, Remarks& remarks) {
  const std::string folder = checked.plan.packageFolder;
  if (!checked.plan.attributes.isFilePresent()) {
    remarks.add(
        "attributes-missing", {checked.shown(fs::path(folder) / kFileName)},
        _("There is no .InstallationAttributes.dat beside the package or one folder above, so the page shows "
          "its built-in texts and asks for one disc."));
    return;
  }
  const fs::path above = fs::path(folder) / ".." / kFileName;
  std::error_code error;
  if (fs::exists(above, error) && checked.plan.attributes.path() != above) {
    remarks.add("attributes-twice", {checked.shown(above)},
                _("The page reads the .InstallationAttributes.dat beside the package and never this one."));
  }
}

// Before a comment the mark harms nobody.
void checkByteOrderMark(const CheckedSet& checked, const AttributesPiece& first, Remarks& remarks) {
  if (!first.parts.key.starts_with(kByteOrderMark)) {
    return;
  }
  if (const AttributesKey* key = knownKey(first.parts.key.substr(kByteOrderMark.size()))) {
    remarks.add("byte-order-mark", checked.attributesPlace(&first),
                format(_("The byte-order mark before {0} is part of the key for the page, which does not know "
                         "it then, so {1}."),
                       {key->name, missingKeyEffect(key->name)}));
  }
}

void checkBytes(const CheckedSet& checked, const AttributesPiece& piece, Remarks& remarks) {
  if (piece.text.find('\0') != std::string_view::npos) {
    remarks.add("nul-byte", checked.attributesPlace(&piece),
                _("A NUL byte ends the line for the page, which does not see what follows it."));
  }
  if (piece.isCut && !piece.continuesLine) {
    remarks.add(
        "line-too-long", checked.attributesPlace(&piece),
        _("The page reads 2047 bytes of this line, so its text is cut there, and takes the rest for another "
          "line."));
  }
  const std::string_view value = piece.parts.value;
  const std::size_t carriageReturn = value.find('\r');
  if (carriageReturn < value.find_last_not_of(" \t\r") &&
      value.find_last_not_of(" \t\r") != std::string_view::npos) {
    remarks.add(
        "carriage-return", checked.attributesPlace(&piece),
        format(_("A carriage return ends the value, so the page shows {0} and nothing of what follows."),
               {quotedText(value.substr(0, carriageReturn))}));
  }
  const AttributesKey* key = knownKey(piece.parts.key);
  if (key != nullptr && key->kind == KeyKind::text && !piece.isCut && !isValidUtf8(value)) {
    remarks.add(
        "text-not-utf8", checked.attributesPlace(&piece),
        format(_("The value of {0} is not UTF-8, so the page shows wrong letters or nothing in its place."),
               {key->name}));
  }
}

}  // namespace

void checkAttributesFile(const CheckedSet& checked, Remarks& remarks) {
  checkPlace(checked, remarks);
  const AttributesReading& attributes = checked.plan.attributes;
  if (attributes.pieces().empty()) {
    return;
  }
  const Place firstLine = checked.attributesPlace(&attributes.pieces().front());
  if (isUtf16(attributes.bytes())) {
    remarks.add("byte-order-mark", firstLine,
                _("The file is UTF-16, of which the page can read no key, so it does as if there were none."));
    return;
  }
  checkByteOrderMark(checked, attributes.pieces().front(), remarks);
  if (hasOldLineEnds(attributes.bytes())) {
    remarks.add(
        "carriage-return", firstLine,
        _("The lines end in carriage returns alone, so the page sees one line and no key but the first."));
    return;
  }
  for (const AttributesPiece& piece : attributes.pieces()) {
    checkBytes(checked, piece, remarks);
  }
}

}  // namespace tavenhall
