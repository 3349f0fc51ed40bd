/// @file
/// The arithmetic of the AVX2 and AVX-512 kernels, over the operations of their instruction sets.
///
/// These multiply unsigned by signed bytes and add adjacent products. A pair of U and V thus gives a whole
/// chroma term, and pairs of luma give the terms of the even pixels or, with other factors, of the odd ones.
///
/// A class `Operations` has the type Register, the loads LoadLuma and LoadChroma, and static functions for
/// the instructions. Names without a type are of signed words; "unsigned" means unsigned words.
#pragma once

#include "graphics/yuv/YuvBlocks.h"

namespace velm::yuv {

/// The base class of a Block for BlockLoop, which adds StoreRow.
/// @tparam kRedBias  what the chroma terms of red are increased by
template <class Operations, int kRedBias>
class ByteProducts {
public:
    using Register = typename Operations::Register;
    static constexpr std::size_t kPixels = sizeof(Register);

    struct Chroma {
        Register red;  // with kRedBias
        Register green;
        Register blue;
    };

    explicit ByteProducts(const Matrix& matrix)
        : m_evenLuma(Operations::Words(BytePair(matrix.luma, 0))),
          m_oddLuma(Operations::Words(BytePair(0, matrix.luma))),
          m_red(Operations::Words(BytePair(0, matrix.vToRed))),
          m_green(Operations::Words(BytePair(matrix.uToGreen, matrix.vToGreen))),
          m_blue(Operations::Words(BytePair(matrix.uToBlue, 0))),
          m_lumaOffset(Operations::Words(matrix.luma * kLumaOffset)),
          m_redOffset(Operations::Words(matrix.luma * kLumaOffset - kRedBias)) {}

    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const Register centred = Operations::Centre(Operations::LoadChroma(u, v));
        return {Operations::Subtract(Operations::MultiplyAdd(m_red, centred), m_redOffset),
                Operations::Add(Operations::MultiplyAdd(m_green, centred), m_lumaOffset),
                Operations::Subtract(Operations::MultiplyAdd(m_blue, centred), m_lumaOffset)};
    }

protected:
    struct Luma {
        Register even;
        Register odd;
    };

    Luma LoadLuma(const unsigned char* y) const {
        const Register luma = Operations::LoadLuma(y);
        return {Operations::MultiplyAdd(luma, m_evenLuma), Operations::MultiplyAdd(luma, m_oddLuma)};
    }

    static Register Blue(const Luma& luma, const Chroma& chroma) {
        return Pack(Operations::AddSaturated(luma.even, chroma.blue),
                    Operations::AddSaturated(luma.odd, chroma.blue));
    }

    static Register Green(const Luma& luma, const Chroma& chroma) {
        return Pack(Operations::Subtract(luma.even, chroma.green),
                    Operations::Subtract(luma.odd, chroma.green));
    }

    static Register Pack(Register even, Register odd) {
        return Operations::PackUnsigned(Operations::template ShiftRight<kFractionBits>(even),
                                        Operations::template ShiftRight<kFractionBits>(odd));
    }

private:
    Register m_evenLuma;
    Register m_oddLuma;
    Register m_red;
    Register m_green;
    Register m_blue;
    Register m_lumaOffset;
    Register m_redOffset;
};

/// The Block of instruction sets that unpack within 128-bit lanes. Its luma and chroma are distributed over
/// the lanes as they are loaded, so that every store writes adjacent pixels.
template <class Operations>
class LaneBlock : public ByteProducts<Operations, kClampBias> {
    using Base = ByteProducts<Operations, kClampBias>;
    using Register = typename Operations::Register;

public:
    using Base::Base;

    template <bool kStream>
    void StoreRow(const typename Base::Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const typename Base::Luma luma = Base::LoadLuma(y);
        const Register blue = Base::Blue(luma, chroma);
        const Register green = Base::Green(luma, chroma);
        const Register evenRed = ClampRed(Operations::AddSaturatedUnsigned(luma.even, chroma.red));
        const Register oddRed = ClampRed(Operations::AddSaturatedUnsigned(luma.odd, chroma.red));
        const Register evenBlueGreen = Operations::UnpackLow8(blue, green);
        const Register oddBlueGreen = Operations::UnpackHigh8(blue, green);
        StoreHalf<kStream>(Operations::UnpackLow16(evenBlueGreen, evenRed),
                           Operations::UnpackLow16(oddBlueGreen, oddRed), argb);
        StoreHalf<kStream>(Operations::UnpackHigh16(evenBlueGreen, evenRed),
                           Operations::UnpackHigh16(oddBlueGreen, oddRed), argb + 2 * sizeof(Register));
    }

private:
    static Register ClampRed(Register biased) {
        return Operations::template ShiftRightUnsigned<kFractionBits>(
            Operations::SubtractSaturatedUnsigned(biased, Operations::Words(kClampBias)));
    }

    template <bool kStream>
    static void StoreHalf(Register even, Register odd, unsigned char* argb) {
        Operations::template Store<kStream>(Operations::UnpackLow32(even, odd), argb);
        Operations::template Store<kStream>(Operations::UnpackHigh32(even, odd), argb + sizeof(Register));
    }
};

}  // namespace velm::yuv
