#include "reader/formats/step/import/LoadCheck.h"

#include <Interface_Check.hxx>
#include <Interface_CheckIterator.hxx>
#include <Interface_CheckTool.hxx>
#include <Interface_HGraph.hxx>
#include <StepData_StepModel.hxx>

namespace ovdl::step {
namespace {

std::string failOf(const Handle(Interface_InterfaceModel) & model, const Handle(Interface_Check) & check,
                   int index)
{
    if (!check->HasFailed())
        return {};
    const int number = index > 0 ? numberInFile(model, model->Value(index)) : 0;
    return "#" + std::to_string(number) + ": " + check->CFail(1);
}

}  // namespace

int numberInFile(const Handle(Interface_InterfaceModel) & model, const Handle(Standard_Transient) & entity)
{
    if (const auto step = Handle(StepData_StepModel)::DownCast(model); !step.IsNull())
        return step->IdentLabel(entity);
    return 2 * model->Number(entity) - 1;
}

// The fails of the session's own list: of the whole, of the grammar, of what entities demand of each other.
// That list has warnings too, and costs twenty times as much.
std::string firstFail(const Handle(XSControl_WorkSession) & session)
{
    const Handle(Interface_InterfaceModel)& model = session->Model();
    std::string fail = failOf(model, model->GlobalCheck(), 0);
    for (int i = 1; i <= model->NbEntities() && fail.empty(); ++i)
        if (model->IsReportEntity(i))
            fail = failOf(model, model->Check(i, Standard_True), i);
    if (!fail.empty())
        return fail;
    Interface_CheckTool tool(session->HGraph());
    Interface_CheckIterator demands = tool.VerifyCheckList();
    for (demands.Start(); demands.More() && fail.empty(); demands.Next())
        fail = failOf(model, demands.Value(), demands.Number());
    return fail;
}

}  // namespace ovdl::step
