#include <cstdio>
#include <memory>

#include "raylume/scene/dlModel.h"

int main(int argc, char** argv)
{
    std::unique_ptr<dlModel> model(argc > 1 ? dlModel::ReadModel(argv[1]) : nullptr);
    if (!model || model->loadRejected)
        return 1;
    std::printf("%s: %d instances\n", model->modelName.c_str(), model->instanceCount);
}
