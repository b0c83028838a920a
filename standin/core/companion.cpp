#include "standin/core/companion.h"

#include <string>

namespace standin {

Companion::Companion(Layer& layer, const std::string& boneName)
    : Effect(layer, kCompanionMatchName) {
  groupName = boneName;
  for (int index = 0; index <= kNudgeParameter; ++index) {
    parameters.push_back(Parameter::Plain("Parameter " + std::to_string(index)));
  }
}

void Companion::SendImagesAgain() {
  imageA.isNew = imageA.picture.width > 0 && imageA.picture.height > 0;
  imageB.isNew = imageB.picture.width > 0 && imageB.picture.height > 0;
}

}  // namespace standin
