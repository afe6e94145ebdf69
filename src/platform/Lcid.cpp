// POSIX locale names to Windows locale identifiers.
#include <string_view>

#include "automation/Convert.hpp"
#include "platform/SystemInfo.hpp"

namespace TessarkAO {

namespace {

struct LcidEntry {
  std::string_view language;   // ISO 639 code as POSIX writes it
  std::string_view territory;  // "" is the language's default identifier
  std::uint32_t lcid;
};

// English and Japanese are settled by language alone (see LcidFromLocaleName).
constexpr LcidEntry kLcids[] = {
    {"af", "", 0x0436}, {"ar", "", 0x0401}, {"ar", "EG", 0x0C01}, {"ar", "AE", 0x3801},
    {"ar", "MA", 0x1801}, {"ar", "DZ", 0x1401}, {"ar", "IQ", 0x0801}, {"ar", "JO", 0x2C01},
    {"be", "", 0x0423}, {"bg", "", 0x0402}, {"bn", "", 0x0445}, {"ca", "", 0x0403},
    {"cs", "", 0x0405}, {"cy", "", 0x0452}, {"da", "", 0x0406}, {"de", "", 0x0407},
    {"de", "CH", 0x0807}, {"de", "AT", 0x0C07}, {"de", "LU", 0x1007}, {"de", "LI", 0x1407},
    {"el", "", 0x0408}, {"es", "", 0x0C0A}, {"es", "MX", 0x080A}, {"es", "GT", 0x100A},
    {"es", "CR", 0x140A}, {"es", "PA", 0x180A}, {"es", "DO", 0x1C0A}, {"es", "VE", 0x200A},
    {"es", "CO", 0x240A}, {"es", "PE", 0x280A}, {"es", "AR", 0x2C0A}, {"es", "EC", 0x300A},
    {"es", "CL", 0x340A}, {"es", "UY", 0x380A}, {"es", "PY", 0x3C0A}, {"es", "BO", 0x400A},
    {"es", "US", 0x540A}, {"et", "", 0x0425}, {"eu", "", 0x042D}, {"fa", "", 0x0429},
    {"fi", "", 0x040B}, {"fo", "", 0x0438}, {"fr", "", 0x040C}, {"fr", "BE", 0x080C},
    {"fr", "CA", 0x0C0C}, {"fr", "CH", 0x100C}, {"fr", "LU", 0x140C}, {"fr", "MC", 0x180C},
    {"ga", "", 0x083C}, {"gl", "", 0x0456}, {"he", "", 0x040D}, {"hi", "", 0x0439},
    {"hr", "", 0x041A}, {"hu", "", 0x040E}, {"hy", "", 0x042B}, {"id", "", 0x0421},
    {"is", "", 0x040F}, {"it", "", 0x0410}, {"it", "CH", 0x0810}, {"ka", "", 0x0437},
    {"kk", "", 0x043F}, {"ko", "", 0x0412}, {"lb", "", 0x046E}, {"lt", "", 0x0427},
    {"lv", "", 0x0426}, {"mk", "", 0x042F}, {"ms", "", 0x043E}, {"mt", "", 0x043A},
    {"nb", "", 0x0414}, {"nl", "", 0x0413}, {"nl", "BE", 0x0813}, {"nn", "", 0x0814},
    {"no", "", 0x0414}, {"pl", "", 0x0415}, {"pt", "", 0x0416}, {"pt", "PT", 0x0816},
    {"ro", "", 0x0418}, {"ru", "", 0x0419}, {"sk", "", 0x041B}, {"sl", "", 0x0424},
    {"sq", "", 0x041C}, {"sr", "", 0x281A}, {"sv", "", 0x041D}, {"sv", "FI", 0x081D},
    {"sw", "", 0x0441}, {"ta", "", 0x0449}, {"th", "", 0x041E}, {"tr", "", 0x041F},
    {"uk", "", 0x0422}, {"ur", "", 0x0420}, {"vi", "", 0x042A}, {"zh", "", 0x0804},
    {"zh", "TW", 0x0404}, {"zh", "HK", 0x0C04}, {"zh", "SG", 0x1004}, {"zh", "MO", 0x1404},
};

constexpr std::uint32_t kEnglish = 1033;
constexpr std::uint32_t kJapanese = 1041;
constexpr std::uint32_t kSerbianLatin = 0x241A;

}  // namespace

std::uint32_t LcidFromLocaleName(std::string_view name) noexcept {
  // language[_territory][.codeset][@modifier]
  const std::size_t langEnd = name.find_first_of("_.@");
  const std::string_view language = name.substr(0, langEnd);
  std::string_view territory;
  if (langEnd != std::string_view::npos && name[langEnd] == '_') {
    territory = name.substr(langEnd + 1);
    territory = territory.substr(0, territory.find_first_of(".@"));
  }
  const std::size_t at = name.find('@');
  const std::string_view modifier = at == std::string_view::npos ? std::string_view() : name.substr(at + 1);

  if (EqualsNoCaseAscii(language, "ja")) return kJapanese;
  if (EqualsNoCaseAscii(language, "sr") && EqualsNoCaseAscii(modifier, "latin")) return kSerbianLatin;
  std::uint32_t languageDefault = 0;
  for (const LcidEntry& e : kLcids) {
    if (!EqualsNoCaseAscii(e.language, language)) continue;
    if (e.territory.empty())
      languageDefault = e.lcid;
    else if (EqualsNoCaseAscii(e.territory, territory))
      return e.lcid;
  }
  // English in every territory, the portable "C" and "POSIX" locales, and
  // any language the table does not know, read as the system's English.
  return languageDefault != 0 ? languageDefault : kEnglish;
}

}  // namespace TessarkAO
