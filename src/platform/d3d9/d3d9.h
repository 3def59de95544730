// Direct3D 9 interfaces as this program uses them: the Direct3D object, the
// device, textures and buffers. Each is an abstract class with COM-style
// reference counting, so tests can put a fake device in the real one's place.
//
// The real implementation is the OpenGL 3.3 back end (D3D9GL*.cpp), reached
// through Direct3DCreate9. Pointer arguments that the platform allows to be
// null are marked "may be null".
#pragma once

#include "platform/d3d9/d3d9caps.h"
#include "platform/d3d9/d3d9types.h"

#define D3D_SDK_VERSION 32

class IDirect3DDevice9;

// Common base of the texture kinds: one or more mip levels.
class IDirect3DBaseTexture9 {
 public:
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;
  virtual DWORD GetLevelCount() = 0;

 protected:
  virtual ~IDirect3DBaseTexture9() = default;
};

// A 2D texture with a mip chain. LockRect gives the texels of one level, row
// by row, Pitch bytes apart; D3DFMT_A8R8G8B8 texels are 32-bit ARGB words.
class IDirect3DTexture9 : public IDirect3DBaseTexture9 {
 public:
  virtual HRESULT GetLevelDesc(UINT Level, D3DSURFACE_DESC* pDesc) = 0;
  // pRect may be null (the whole level).
  virtual HRESULT LockRect(UINT Level, D3DLOCKED_RECT* pLockedRect, const RECT* pRect, DWORD Flags) = 0;
  virtual HRESULT UnlockRect(UINT Level) = 0;
};

class IDirect3DVertexBuffer9 {
 public:
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;
  // SizeToLock 0 means to the end of the buffer.
  virtual HRESULT Lock(UINT OffsetToLock, UINT SizeToLock, void** ppbData, DWORD Flags) = 0;
  virtual HRESULT Unlock() = 0;

 protected:
  virtual ~IDirect3DVertexBuffer9() = default;
};

class IDirect3DIndexBuffer9 {
 public:
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;
  // SizeToLock 0 means to the end of the buffer.
  virtual HRESULT Lock(UINT OffsetToLock, UINT SizeToLock, void** ppbData, DWORD Flags) = 0;
  virtual HRESULT Unlock() = 0;

 protected:
  virtual ~IDirect3DIndexBuffer9() = default;
};

class IDirect3DDevice9 {
 public:
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;

  // Lost-device protocol: D3D_OK, D3DERR_DEVICELOST (cannot be reset yet) or
  // D3DERR_DEVICENOTRESET (Reset may be called now).
  virtual HRESULT TestCooperativeLevel() = 0;
  virtual HRESULT Reset(D3DPRESENT_PARAMETERS* pPresentationParameters) = 0;
  // The four arguments may all be null; only null is supported (whole back
  // buffer to the device window). The last stands for the platform's RGNDATA.
  virtual HRESULT Present(const RECT* pSourceRect, const RECT* pDestRect, HWND hDestWindowOverride,
                          const void* pDirtyRegion) = 0;

  virtual HRESULT CreateTexture(UINT Width, UINT Height, UINT Levels, DWORD Usage, D3DFORMAT Format,
                                D3DPOOL Pool, IDirect3DTexture9** ppTexture, HANDLE* pSharedHandle) = 0;
  virtual HRESULT CreateVertexBuffer(UINT Length, DWORD Usage, DWORD FVF, D3DPOOL Pool,
                                     IDirect3DVertexBuffer9** ppVertexBuffer, HANDLE* pSharedHandle) = 0;
  virtual HRESULT CreateIndexBuffer(UINT Length, DWORD Usage, D3DFORMAT Format, D3DPOOL Pool,
                                    IDirect3DIndexBuffer9** ppIndexBuffer, HANDLE* pSharedHandle) = 0;

  virtual HRESULT BeginScene() = 0;
  virtual HRESULT EndScene() = 0;
  // pRects may be null when Count is 0 (the whole viewport).
  virtual HRESULT Clear(DWORD Count, const D3DRECT* pRects, DWORD Flags, D3DCOLOR Color, float Z,
                        DWORD Stencil) = 0;

  virtual HRESULT SetTransform(D3DTRANSFORMSTATETYPE State, const D3DMATRIX* pMatrix) = 0;
  virtual HRESULT SetViewport(const D3DVIEWPORT9* pViewport) = 0;
  virtual HRESULT SetRenderState(D3DRENDERSTATETYPE State, DWORD Value) = 0;
  // pTexture may be null (the stage has no texture).
  virtual HRESULT SetTexture(DWORD Stage, IDirect3DBaseTexture9* pTexture) = 0;
  virtual HRESULT SetTextureStageState(DWORD Stage, D3DTEXTURESTAGESTATETYPE Type, DWORD Value) = 0;
  virtual HRESULT SetSamplerState(DWORD Sampler, D3DSAMPLERSTATETYPE Type, DWORD Value) = 0;

  virtual HRESULT SetFVF(DWORD FVF) = 0;
  // pStreamData may be null (unbinds).
  virtual HRESULT SetStreamSource(UINT StreamNumber, IDirect3DVertexBuffer9* pStreamData,
                                  UINT OffsetInBytes, UINT Stride) = 0;
  // pIndexData may be null (unbinds).
  virtual HRESULT SetIndices(IDirect3DIndexBuffer9* pIndexData) = 0;
  virtual HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE PrimitiveType, INT BaseVertexIndex,
                                       UINT MinVertexIndex, UINT NumVertices, UINT startIndex,
                                       UINT primCount) = 0;
  virtual HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE PrimitiveType, UINT PrimitiveCount,
                                  const void* pVertexStreamZeroData, UINT VertexStreamZeroStride) = 0;

 protected:
  virtual ~IDirect3DDevice9() = default;
};

// The Direct3D object: what the machine can do, and device creation.
class IDirect3D9 {
 public:
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;

  virtual UINT GetAdapterCount() = 0;
  virtual HRESULT GetAdapterIdentifier(UINT Adapter, DWORD Flags, D3DADAPTER_IDENTIFIER9* pIdentifier) = 0;
  virtual UINT GetAdapterModeCount(UINT Adapter, D3DFORMAT Format) = 0;
  virtual HRESULT EnumAdapterModes(UINT Adapter, D3DFORMAT Format, UINT Mode, D3DDISPLAYMODE* pMode) = 0;
  virtual HRESULT GetAdapterDisplayMode(UINT Adapter, D3DDISPLAYMODE* pMode) = 0;
  virtual HRESULT CheckDeviceType(UINT Adapter, D3DDEVTYPE DevType, D3DFORMAT AdapterFormat,
                                  D3DFORMAT BackBufferFormat, BOOL bWindowed) = 0;
  virtual HRESULT CheckDeviceFormat(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT AdapterFormat, DWORD Usage,
                                    D3DRESOURCETYPE RType, D3DFORMAT CheckFormat) = 0;
  // pQualityLevels may be null.
  virtual HRESULT CheckDeviceMultiSampleType(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT SurfaceFormat,
                                             BOOL Windowed, D3DMULTISAMPLE_TYPE MultiSampleType,
                                             DWORD* pQualityLevels) = 0;
  virtual HRESULT CheckDepthStencilMatch(UINT Adapter, D3DDEVTYPE DeviceType, D3DFORMAT AdapterFormat,
                                         D3DFORMAT RenderTargetFormat, D3DFORMAT DepthStencilFormat) = 0;
  virtual HRESULT GetDeviceCaps(UINT Adapter, D3DDEVTYPE DeviceType, D3DCAPS9* pCaps) = 0;
  virtual HRESULT CreateDevice(UINT Adapter, D3DDEVTYPE DeviceType, HWND hFocusWindow, DWORD BehaviorFlags,
                               D3DPRESENT_PARAMETERS* pPresentationParameters,
                               IDirect3DDevice9** ppReturnedDeviceInterface) = 0;

 protected:
  virtual ~IDirect3D9() = default;
};

// Makes the Direct3D object; null unless SDKVersion is D3D_SDK_VERSION.
IDirect3D9* Direct3DCreate9(UINT SDKVersion);
