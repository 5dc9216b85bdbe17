#include "zpdf/Object.h"

#include "zpdf/Array.h"
#include "zpdf/Bool.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Dict.h"
#include "zpdf/Number.h"
#include "zpdf/Stream.h"
#include "zpdf/String.h"

#include <cstdio>

namespace zpdf {

void Object::dump() const
{
    BufferWriter out;
    write(out);
    const std::string& text = out.data();
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

Object* Object::resolve() { return this; }

Object* Object::self() { return this; }

namespace {

template <class T>
T* ofType(Object* object, Type type)
{
    return object && object->type() == type ? static_cast<T*>(object) : nullptr;
}

} // namespace

Number* Object::asNumber() { return ofType<Number>(resolve(), Type::Number); }
Array* Object::asArray() { return ofType<Array>(resolve(), Type::Array); }
Bool* Object::asBool() { return ofType<Bool>(resolve(), Type::Bool); }
Name* Object::asName() { return ofType<Name>(resolve(), Type::Name); }
String* Object::asString() { return ofType<String>(resolve(), Type::String); }
Stream* Object::asStream() { return ofType<Stream>(resolve(), Type::Stream); }

Dict* Object::asDict()
{
    Object* object = resolve();
    if (!object)
        return nullptr;
    if (object->type() == Type::Stream)
        return static_cast<Stream*>(object)->dict();
    if (object->type() == Type::Dict || object->type() == Type::Trailer)
        return static_cast<Dict*>(object);
    return nullptr;
}

bool sameValue(const Object* a, const Object* b, bool deep)
{
    if (!a || !b)
        return a == b;
    return deep ? a->equals(b, true) : a == b;
}

bool isAbsent(Object* object)
{
    Object* value = object ? object->resolve() : nullptr;
    return !value || value->type() == Type::Null;
}

} // namespace zpdf
