// Document objects and the container of embedded items.
#include "raylume/load/ReaderInterface.h"

OVDLDocument::OVDLDocument() = default;
OVDLDocument::OVDLDocument(const OVDLDocument&) = default;
OVDLDocument& OVDLDocument::operator=(const OVDLDocument&) = default;
OVDLDocument::~OVDLDocument() = default;

bool OVDLDocument::isRejected()
{
    return rejected;
}

OVDLPartDocument::OVDLPartDocument() = default;
OVDLPartDocument::OVDLPartDocument(const OVDLPartDocument&) = default;
OVDLPartDocument& OVDLPartDocument::operator=(const OVDLPartDocument&) = default;
OVDLPartDocument::~OVDLPartDocument() = default;

OVDLAssemblyDocument::OVDLAssemblyDocument() = default;
OVDLAssemblyDocument::OVDLAssemblyDocument(const OVDLAssemblyDocument&) = default;
OVDLAssemblyDocument& OVDLAssemblyDocument::operator=(const OVDLAssemblyDocument&) = default;
OVDLAssemblyDocument::~OVDLAssemblyDocument() = default;

OVDLOleDocumentContainer::OVDLOleDocumentContainer() = default;
OVDLOleDocumentContainer::~OVDLOleDocumentContainer() = default;

// None of the formats embeds documents of other programs, so there is never an item to list.
OVDLOleDocumentContainer* restoreOleItems(const std::wstring&, CList<CRectItem*, CRectItem*>&)
{
    return new OVDLOleDocumentContainer;
}
