#include "linux/scripts/ScriptObject.h"

namespace sunpane::scripts {

std::optional<Value> Object::get(Term /*term*/) {
    return std::nullopt;
}

bool Object::set(Term /*term*/, const Value& /*value*/) {
    return false;
}

bool Object::perform(Verb /*verb*/) {
    return false;
}

std::optional<Value> Object::executeJavaScript(const std::string& /*source*/) {
    return std::nullopt;
}

}  // namespace sunpane::scripts
