// The entry points that the dunx driver looks up by name in this module.
#include "DunxTranslator.h"
#include "ModelReader.h"
#include "ObjWriter.h"

using namespace dunx::translator;

extern "C" {

__attribute__((visibility("default"))) long DunxRead(const Request& request, Model& model,
                                                     Report& report) {
    return ReadModel(request, model, report);
}

__attribute__((visibility("default"))) long DunxWrite(const Request& request, const Model& model,
                                                      Report& report) {
    return WriteObj(request, model, report);
}

// The module keeps no state between translations: each read starts afresh
// from its request, so loading and freeing it need no work.
__attribute__((visibility("default"))) void DunxTranslatorInitialize() {}

__attribute__((visibility("default"))) void DunxTranslatorFinalize() {}

} // extern "C"
