#include "frame/clsSaveData.h"

namespace tessarlorn {

clsSaveData::clsSaveData() : session_(SessionFactory::ForThisThread().NewSession()) {
  context_ = SessionFactory::ForThisThread().NewSession()->GetContext();
}

}  // namespace tessarlorn
