// View data of a document -> the model's view fields.
#pragma once

class OVDLDocument;
class dlModel;

/// Fills viewXform (the inverse of the document's), viewDirection, viewScale and viewPoint.
void translateView(dlModel& model, OVDLDocument& document);
