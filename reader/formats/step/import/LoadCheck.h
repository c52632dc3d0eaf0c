// What the library finds wrong with a file that it has loaded.
#pragma once

#include <Interface_InterfaceModel.hxx>
#include <XSControl_WorkSession.hxx>
#include <string>

namespace ovdl::step {

/// The number by which the file itself knows an entity.
int numberInFile(const Handle(Interface_InterfaceModel) & model, const Handle(Standard_Transient) & entity);

/// The first fail of the load check, "#<number of the entity>: <text>"; empty when there is none.
std::string firstFail(const Handle(XSControl_WorkSession) & session);

}  // namespace ovdl::step
