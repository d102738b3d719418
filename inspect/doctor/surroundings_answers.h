// The answers about what surrounds a launch: the JVM, the disk, the locale, the environment.
#pragma once

#include "inspect/doctor/evidence.h"

namespace rcp::inspect {

Answer answerJvm(const Evidence& evidence);
Answer answerSpace(const Evidence& evidence);
Answer answerLocale(const Evidence& evidence);
Answer answerEnvironment(const Evidence& evidence);

}  // namespace rcp::inspect
