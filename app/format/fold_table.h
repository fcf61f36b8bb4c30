// What letters become when case and accents do not count: Latin, Greek and Cyrillic, one for each
// character of a block. A blank leaves the character as it is. Letters that have a mark and are
// letters of their own all the same (й, ї, ў, ѓ, ќ) keep it.
#pragma once
#include <cstdint>

namespace console {

// clang-format off
// From U+00C0 on.
constexpr char16_t kLatin[] =
    u"aaaaaaæceeeeiiiidnooooo×ouuuuyþßaaaaaaæceeeeiiiidnooooo÷ouuuuyþyaaaaaaccccccccdd"
    u"ddeeeeeeeeeegggggggghhhhiiiiiiiiiiĳĳjjkkkllllllllllnnnnnnnnnooooooœœrrrrrrssssss"
    u"ssttttttuuuuuuuuuuuuwwyyyzzzzzzsbɓƃƃƅƅɔccɖɗƌƌƍǝəɛffɠɣƕɩikklƛɯɲƞɵooƣƣƥƥʀƨƨʃƪƫƭƭʈu"
    u"uʊʋƴƴzzʒƹƹƺƻƽƽƾƿǀǁǂǃǆǆǆǉǉǉǌǌǌaaiioouuuuuuuuuuǝaaaaææggggkkooooʒʒjǳǳǳggƕƿnnaaææoo"
    u"aaaaeeeeiiiioooorrrruuuussttȝȝhhƞȡȣȣzzaaeeooooooooyyȴȵȶȷȸȹaccltȿɀɂɂbuʌeejjɋɋrryy";
// From U+0370 on.
constexpr char16_t kGreekAndCyrillic[] =
    u"ͱͱͳͳʹ ͷͷ  ͺͻͼͽ ϳ      α·εηι ο υωιαβγδεζηθικλμνξοπρ στυφχψωιυαεηιυαβγδεζηθικλμνξο"
    u"πρσστυφχψωιυουωϗϐϑϒϒϒϕϖϗϙϙϛϛϝϝϟϟϡϡϣϣϥϥϧϧϩϩϫϫϭϭϯϯϰϱϲϳθϵ϶ϸϸϲϻϻϼͻͼͽееђѓєѕіїјљњћќиўџ"
    u"абвгдежзийклмнопрстуфхцчшщъыьэюяабвгдежзийклмнопрстуфхцчшщъыьэюяееђѓєѕіїјљњћќиўџ"
    u"ѡѡѣѣѥѥѧѧѩѩѫѫѭѭѯѯѱѱѳѳѵѵѵѵѹѹѻѻѽѽѿѿҁҁ҂       ҋҋҍҍҏҏґґғғҕҕҗҗҙҙққҝҝҟҟҡҡңңҥҥҧҧҩҩҫҫҭҭүү"
    u"ұұҳҳҵҵҷҷҹҹһһҽҽҿҿӏжжӄӄӆӆӈӈӊӊӌӌӎӎӏааааӕӕееәәәәжжззӡӡииииооөөөөээууууууччӷӷыыӻӻӽӽӿӿ"
    u"ԁԁԃԃԅԅԇԇԉԉԋԋԍԍԏԏԑԑԓԓԕԕԗԗԙԙԛԛԝԝԟԟԡԡԣԣԥԥԧԧԩԩԫԫԭԭԯԯ";
// From U+1E00 on.
constexpr char16_t kMoreLatinAndGreek[] =
    u"aabbbbbbccddddddddddeeeeeeeeeeffgghhhhhhhhhhiiiikkkkkkllllllllmmmmmmnnnnnnnnoooo"
    u"oooopppprrrrrrrrssssssssssttttttttuuuuuuuuuuvvvvwwwwwwwwwwxxxxyyzzzzzzhtwyasẜẝßẟ"
    u"aaaaaaaaaaaaaaaaaaaaaaaaeeeeeeeeeeeeeeeeiiiioooooooooooooooooooooooouuuuuuuuuuuu"
    u"uuyyyyyyyyỻỻỽỽỿỿααααααααααααααααεεεεεε  εεεεεε  ηηηηηηηηηηηηηηηηιιιιιιιιιιιιιιιι"
    u"οοοοοο  οοοοοο  υυυυυυυυ υ υ υ υωωωωωωωωωωωωωωωωααεεηηιιοουυωω  αααααααααααααααα"
    u"ηηηηηηηηηηηηηηηηωωωωωωωωωωωωωωωωααααα ααααααα ι   ηηη ηηεεηηη   ιιιι  ιιιιιι    "
    u"υυυυρρυυυυυυρ     ωωω ωωοοωωω   ";
// clang-format on

// Characters that become two.
struct LongFold {
  char16_t from;
  const char* to;
};
constexpr LongFold kLongFolds[] = {
    {u'æ', "ae"}, {u'œ', "oe"}, {u'þ', "th"}, {u'ß', "ss"}, {u'ĳ', "ij"}, {u'Ǆ', "dz"},
    {u'ǅ', "dz"}, {u'ǆ', "dz"}, {u'Ǉ', "lj"}, {u'ǈ', "lj"}, {u'ǉ', "lj"}, {u'Ǌ', "nj"},
    {u'ǋ', "nj"}, {u'ǌ', "nj"}, {u'Ǳ', "dz"}, {u'ǲ', "dz"}, {u'ǳ', "dz"},
};

}  // namespace console
