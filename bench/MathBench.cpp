// Transforms of 1M points: DUNXMorph3D on an array of DUNXPoint3D and the assembly
// transform on packed floats, against Eigen's Affine3d applied point by point.
#include "BenchTable.h"

#include <dunx/DUNXAffine.h>
#include <dunx/DUNXAssemblyComponentTransform.h>
#include <dunx/DUNXMorph.h>
#include <dunx/DUNXPoint.h>

#include <Eigen/Geometry>

#include <cmath>
#include <vector>

namespace {

constexpr int kPoints = 1000000;

// A rotation of 30 degrees about z and a translation: the transform of a
// typical assembly component.
Eigen::Affine3d eigenTransform() {
    Eigen::Affine3d transform = Eigen::Affine3d::Identity();
    transform.rotate(Eigen::AngleAxisd(M_PI / 6, Eigen::Vector3d::UnitZ()));
    transform.pretranslate(Eigen::Vector3d(1.0, -2.0, 0.5));
    return transform;
}

void eigenPoints(benchmark::State& state) {
    const Eigen::Affine3d transform = eigenTransform();
    std::vector<Eigen::Vector3d> points(kPoints, Eigen::Vector3d(1.0, 2.0, 3.0));
    for (auto _ : state) {
        for (Eigen::Vector3d& p : points)
            p = transform * p;
        benchmark::ClobberMemory();
    }
}

void eigenFloatPoints(benchmark::State& state) {
    const Eigen::Affine3d transform = eigenTransform();
    std::vector<float> xyz(3 * kPoints, 1.0f);
    for (auto _ : state) {
        for (std::size_t i = 0; i < xyz.size(); i += 3) {
            const Eigen::Vector3d p = transform * Eigen::Vector3d(xyz[i], xyz[i + 1], xyz[i + 2]);
            xyz[i] = static_cast<float>(p.x());
            xyz[i + 1] = static_cast<float>(p.y());
            xyz[i + 2] = static_cast<float>(p.z());
        }
        benchmark::ClobberMemory();
    }
}

// Eigen's transform as a DUNXMorph3D: the same rotation and translation, scale 1.
DUNXMorph3D libraryMorph(const Eigen::Matrix3d& linear, const Eigen::Vector3d& shift) {
    DUNXAffine3D affine;
    for (int column = 0; column < 3; ++column)
        affine.SetColumn(column,
                         DUNXPoint3D(linear(0, column), linear(1, column), linear(2, column)));
    return DUNXMorph3D(affine, DUNXPoint3D(shift.x(), shift.y(), shift.z()), 1.0);
}

const bool registered = [] {
    const Eigen::Affine3d transform = eigenTransform();
    const Eigen::Matrix3d linear = transform.linear();
    const Eigen::Vector3d shift = transform.translation();

    const std::string morph = "Morph3D on 1M points";
    bench::Add(morph, bench::kLimit, eigenPoints);
    bench::Add(morph, bench::kLibrary, [linear, shift](benchmark::State& state) {
        const DUNXMorph3D morph3D = libraryMorph(linear, shift);
        std::vector<DUNXPoint3D> points(kPoints, DUNXPoint3D(1.0, 2.0, 3.0));
        for (auto _ : state) {
            // The bulk call over the array: the same points, the same
            // result as calling Transform on each.
            DUNXPoint3D::TransformArray(points.data(), kPoints, morph3D);
            benchmark::ClobberMemory();
        }
    });

    // The same morph through DUNXMorph3D::Apply on packed coordinates, the
    // layout of Eigen's points: 24 bytes a point against DUNXPoint3D's 48.
    const std::string packed = "Morph3D::Apply on 1M packed points";
    bench::Add(packed, bench::kLimit, eigenPoints);
    bench::Add(packed, bench::kLibrary, [linear, shift](benchmark::State& state) {
        const DUNXMorph3D morph3D = libraryMorph(linear, shift);
        std::vector<double> xyz(3 * static_cast<std::size_t>(kPoints));
        for (std::size_t i = 0; i < xyz.size(); i += 3) {
            xyz[i] = 1.0;
            xyz[i + 1] = 2.0;
            xyz[i + 2] = 3.0;
        }
        for (auto _ : state) {
            morph3D.Apply(xyz.data(), kPoints);
            benchmark::ClobberMemory();
        }
    });

    const std::string assembly = "assembly transform on 1M points";
    bench::Add(assembly, bench::kLimit, eigenFloatPoints);
    bench::Add(assembly, bench::kLibrary, [linear, shift](benchmark::State& state) {
        DUNXAssemblyComponentTransform act;
        double rotation[9];
        for (int column = 0; column < 3; ++column)
            for (int row = 0; row < 3; ++row)
                rotation[3 * column + row] = linear(row, column);
        const double translation[3] = {shift.x(), shift.y(), shift.z()};
        act.SetRotation(rotation);
        act.SetTranslation(translation);
        std::vector<float> xyz(3 * kPoints, 1.0f);
        for (auto _ : state) {
            act.ApplyTransform(xyz.data(), kPoints);
            benchmark::ClobberMemory();
        }
    });
    return true;
}();

} // namespace
