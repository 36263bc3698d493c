// Loads an automation picture from a file (BMP, GIF, JPEG, ICO), for SavePNG and SaveJPEG.
// The project's tests compile it and do not run it: it needs .NET on Windows.
using System;
using System.Runtime.InteropServices;

public static class Picture
{
    [DllImport("oleaut32.dll", CharSet = CharSet.Unicode, PreserveSig = false)]
    static extern void OleLoadPicturePath(string path, IntPtr caller, uint reserved, uint transparent, ref Guid iid,
                                          [MarshalAs(UnmanagedType.IDispatch)] out object picture);

    public static object Load(string path)
    {
        object picture;
        Guid dispatch = new Guid("7BF80981-BF32-101A-8BBB-00AA00300CAB");
        OleLoadPicturePath(path, IntPtr.Zero, 0, 0, ref dispatch, out picture);
        return picture;
    }
}
