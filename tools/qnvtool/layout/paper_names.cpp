// The papers that have a name.
#include "qnvtool/layout/paper_names.h"

#include <algorithm>
#include <charconv>

namespace qnv::tool {
namespace {

constexpr double kMmOfInch = 25.4;

// Names of the Internet Printing Protocol: standard, name, size.
constexpr std::string_view kPapers[] = {
    // clang-format off
    "iso_a4_210x297mm", "iso_a10_26x37mm", "iso_a9_37x52mm", "iso_a8_52x74mm", "iso_a7_74x105mm", "iso_a6_105x148mm",
    "iso_a5_148x210mm", "iso_a5-extra_174x235mm", "iso_a4-tab_225x297mm", "iso_a4-extra_235.5x322.3mm",
    "iso_a3_297x420mm", "iso_a4x3_297x630mm", "iso_a4x4_297x841mm", "iso_a4x5_297x1051mm", "iso_a4x6_297x1261mm",
    "iso_a4x7_297x1471mm", "iso_a4x8_297x1682mm", "iso_a4x9_297x1892mm", "iso_a3-extra_322x445mm", "iso_a2_420x594mm",
    "iso_a3x3_420x891mm", "iso_a3x4_420x1189mm", "iso_a3x5_420x1486mm", "iso_a3x6_420x1783mm", "iso_a3x7_420x2080mm",
    "iso_a1_594x841mm", "iso_a2x3_594x1261mm", "iso_a2x4_594x1682mm", "iso_a2x5_594x2102mm", "iso_a0_841x1189mm",
    "iso_a1x3_841x1783mm", "iso_a1x4_841x2378mm", "iso_2a0_1189x1682mm", "iso_a0x3_1189x2523mm", "iso_b10_31x44mm",
    "iso_b9_44x62mm", "iso_b8_62x88mm", "iso_b7_88x125mm", "iso_b6_125x176mm", "iso_b6c4_125x324mm",
    "iso_b5_176x250mm", "iso_b5-extra_201x276mm", "iso_b4_250x353mm", "iso_b3_353x500mm", "iso_b2_500x707mm",
    "iso_b1_707x1000mm", "iso_b0_1000x1414mm", "iso_c10_28x40mm", "iso_c9_40x57mm", "iso_c8_57x81mm",
    "iso_c7_81x114mm", "iso_c7c6_81x162mm", "iso_c6_114x162mm", "iso_c6c5_114x229mm", "iso_c5_162x229mm",
    "iso_c4_229x324mm", "iso_c3_324x458mm", "iso_c2_458x648mm", "iso_c1_648x917mm", "iso_c0_917x1297mm",
    "iso_dl_110x220mm", "iso_ra4_215x305mm", "iso_sra4_225x320mm", "iso_ra3_305x430mm", "iso_sra3_320x450mm",
    "iso_ra2_430x610mm", "iso_sra2_450x640mm", "iso_ra1_610x860mm", "iso_sra1_640x900mm", "iso_ra0_860x1220mm",
    "iso_sra0_900x1280mm", "na_letter_8.5x11in", "na_index_4x6in", "na_index-3x5_3x5in", "na_personal_3.625x6.5in",
    "na_monarch_3.875x7.5in", "na_number-9_3.875x8.875in", "na_index-4x6_4x6in", "na_number-10_4.125x9.5in",
    "na_a2_4.375x5.75in", "na_number-11_4.5x10.375in", "na_number-12_4.75x11in", "na_5x7_5x7in", "na_index-5x8_5x8in",
    "na_number-14_5x11.5in", "na_invoice_5.5x8.5in", "na_index-4x6-ext_6x8in", "na_6x9_6x9in", "na_c5_6.5x9.5in",
    "na_7x9_7x9in", "na_executive_7.25x10.5in", "na_govt-letter_8x10in", "na_govt-legal_8x13in",
    "na_quarto_8.5x10.83in", "na_fanfold-eur_8.5x12in", "na_letter-plus_8.5x12.69in", "na_foolscap_8.5x13in",
    "na_oficio_8.5x13.4in", "na_legal_8.5x14in", "na_super-a_8.94x14in", "na_9x11_9x11in", "na_arch-a_9x12in",
    "na_letter-extra_9.5x12in", "na_legal-extra_9.5x15in", "na_10x11_10x11in", "na_10x13_10x13in", "na_10x14_10x14in",
    "na_10x15_10x15in", "na_11x12_11x12in", "na_edp_11x14in", "na_fanfold-us_11x14.875in", "na_11x15_11x15in",
    "na_ledger_11x17in", "na_eur-edp_12x14in", "na_arch-b_12x18in", "na_12x19_12x19in", "na_b-plus_12x19.17in",
    "na_super-b_13x19in", "na_c_17x22in", "na_arch-c_18x24in", "na_d_22x34in", "na_arch-d_24x36in",
    "na_wide-format_30x42in", "na_e_34x44in", "na_arch-e_36x48in", "na_f_44x68in", "asme_f_28x40in",
    "jis_b10_32x45mm", "jis_b9_45x64mm", "jis_b8_64x91mm", "jis_b7_91x128mm", "jis_b6_128x182mm", "jis_b5_182x257mm",
    "jis_b4_257x364mm", "jis_b3_364x515mm", "jis_b2_515x728mm", "jis_b1_728x1030mm", "jis_b0_1030x1456mm",
    "jis_exec_216x330mm", "jpn_kaku1_270x382mm", "jpn_kaku2_240x332mm", "jpn_kaku3_216x277mm", "jpn_kaku4_197x267mm",
    "jpn_kaku5_190x240mm", "jpn_kaku7_142x205mm", "jpn_kaku8_119x197mm", "jpn_chou4_90x205mm", "jpn_hagaki_100x148mm",
    "jpn_you4_105x235mm", "jpn_you6_98x190mm", "jpn_chou2_111.1x146mm", "jpn_chou3_120x235mm", "jpn_chou40_90x225mm",
    "jpn_oufuku_148x200mm", "jpn_kahu_240x322.1mm", "prc_32k_97x151mm", "prc_1_102x165mm", "prc_2_102x176mm",
    "prc_4_110x208mm", "prc_8_120x309mm", "prc_6_120x320mm", "prc_16k_146x215mm", "prc_7_160x230mm",
    "prc_3_125x176mm", "prc_5_110x220mm", "prc_9_229x324mm", "prc_10_324x458mm", "roc_16k_7.75x10.75in",
    "roc_8k_10.75x15.5in", "om_juuro-ku-kai_198x275mm", "om_pa-kai_267x389mm", "om_dai-pa-kai_275x395mm",
    "om_small-photo_100x150mm", "om_italian_110x230mm", "om_folio_210x330mm", "om_folio-sp_215x315mm",
    "om_invite_220x220mm", "om_medium-photo_130x180mm", "om_large-photo_200x300mm", "oe_photo-l_3.5x5in",
    "oe_square-photo_5x5in",
    // clang-format on
};

// Names in daily use for some of them.
constexpr struct {
  std::string_view alias, name;
} kAliases[] = {
    {"postcard", "jpn_hagaki"}, {"hagaki", "jpn_hagaki"},  {"tabloid", "na_ledger"},   {"statement", "na_invoice"},
    {"4x6", "na_index-4x6"},    {"photo", "na_index-4x6"}, {"8x10", "na_govt-letter"}, {"10x15", "om_small-photo"},
    {"com10", "na_number-10"},  {"env10", "na_number-10"}, {"dl", "iso_dl"},           {"folio", "om_folio"},
};

// Reads a number at the beginning of the text and removes it. False when there is none.
bool TakeNumber(std::string_view& text, double* value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return true;
}

}  // namespace

std::optional<Paper> PaperOfSize(std::string_view text) {
  Paper paper;
  if (!TakeNumber(text, &paper.widthMm) || !text.starts_with('x')) return std::nullopt;
  text.remove_prefix(1);
  if (!TakeNumber(text, &paper.heightMm)) return std::nullopt;
  if (text == "in") {
    paper.widthMm *= kMmOfInch;
    paper.heightMm *= kMmOfInch;
  } else if (text != "mm") {
    return std::nullopt;
  }
  return paper;
}

std::optional<Paper> PaperOfName(std::string_view name) {
  const auto alias =
      std::find_if(std::begin(kAliases), std::end(kAliases), [&](const auto& a) { return a.alias == name; });
  if (alias != std::end(kAliases)) name = alias->name;
  for (const std::string_view paper : kPapers) {
    const std::size_t size = paper.rfind('_');
    const std::string_view withStandard = paper.substr(0, size);
    const std::string_view alone = withStandard.substr(withStandard.find('_') + 1);
    if (name == paper || name == withStandard || name == alone) return PaperOfSize(paper.substr(size + 1));
  }
  // Printers have papers of their own: "custom_anything_100x200mm" says its size as well.
  const std::size_t size = name.rfind('_');
  if (size != std::string_view::npos && name.starts_with("custom_")) return PaperOfSize(name.substr(size + 1));
  return std::nullopt;
}

std::string KnownPaperNames() {
  std::string names;
  for (const std::string_view paper : kPapers) {
    names += names.empty() ? "" : " ";
    names += paper.substr(0, paper.rfind('_'));
  }
  return names;
}

}  // namespace qnv::tool
