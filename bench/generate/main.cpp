// SPDX-License-Identifier: Apache-2.0
// Writes a composition of a given shape and size, for measurements.
#include "media_tree.h"
#include "shapes.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <string>

namespace trellant::bench {

namespace {

struct Options {
    std::string shape;
    std::string path;
    ShapeRequest request{.count = 1000, .levels = 8};
    ContainerOptions container;
    std::string tree;
    std::uint32_t treeFiles = 0;
};

std::string shapeList() {
    std::string list = "Shapes:";
    for (const Shape& shape : allShapes()) {
        list += "\n  " + std::string(shape.name) + ": " + std::string(shape.what);
    }
    return list;
}

void declare(CLI::App& app, Options& options) {
    std::map<std::string, const Shape*> names;
    for (const Shape& shape : allShapes()) {
        names.emplace(shape.name, &shape);
    }
    const std::map<std::string, TableForm> forms{{"compressed", TableForm::compressed},
                                                 {"v1", TableForm::v1}};
    const std::map<std::string, OMFByteOrder> orders{{"little", OMFByteOrder::little},
                                                     {"big", OMFByteOrder::big}};
    app.footer(shapeList());
    app.add_option("SHAPE", options.shape)->required()->check(CLI::IsMember(names));
    app.add_option("FILE", options.path, "Written anew")->required();
    app.add_option("--count", options.request.count, "How many of what the shape has many of")
        ->check(CLI::Range(1, 10'000'000));
    app.add_option("--levels", options.request.levels, "Of mobs (chains) or scopes (levels)")
        ->check(CLI::Range(0, 60));
    app.add_option("--media-bytes", options.request.media.byteCount, "Of each embedded file")
        ->check(CLI::Range(std::uint64_t{44}, std::uint64_t{1} << 40U));
    app.add_option("--alignment", options.request.media.alignment, "Of each embedded file")
        ->check(CLI::Range(1, 1'048'576));
    app.add_option("--remainder", options.request.media.remainder, "Bytes past the alignment");
    app.add_option("--table", options.container.table, "compressed or v1")
        ->transform(CLI::CheckedTransformer(forms));
    app.add_option("--byte-order", options.container.byteOrder, "little or big")
        ->transform(CLI::CheckedTransformer(orders));
    app.add_option("--tree", options.tree, "Also write a tree of audio files here (external)");
    app.add_option("--tree-files", options.treeFiles, "Files in the tree");
}

void generate(const Options& options) {
    for (const Shape& shape : allShapes()) {
        if (shape.name == options.shape) {
            ContainerOptions container = options.container;
            container.layout = shape.layout;
            ContainerStream::write(options.path, container, [&](ContainerStream& stream) {
                CompositionWriter writer(stream);
                shape.describe(writer, options.request);
            });
        }
    }
    if (!options.tree.empty()) {
        writeMediaTree(options.tree, options.treeFiles, options.request.count);
    }
}

}  // namespace

}  // namespace trellant::bench

int main(int argc, char** argv) {
    trellant::bench::Options options;
    CLI::App app{"Writes a composition of a given shape and size, for measurements"};
    trellant::bench::declare(app, options);
    CLI11_PARSE(app, argc, argv);
    try {
        if (options.request.media.remainder >= options.request.media.alignment) {
            throw std::invalid_argument("the remainder is not below the alignment");
        }
        trellant::bench::generate(options);
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "bench_generate: %s\n", error.what()));
        return 1;
    }
    return 0;
}
