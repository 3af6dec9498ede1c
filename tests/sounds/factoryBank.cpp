#include "factoryBank.h"

#include "tools/soundFiles.h"

namespace tolm {

const std::vector<Sound>& factorySounds()
{
    static const std::vector<Sound> sounds = readDirectory(factoryDirectory());
    return sounds;
}

const BankStudy& factoryStudy()
{
    static const BankStudy study = studyBank(factorySounds(), [](std::size_t) {});
    return study;
}

} // namespace tolm
