//! Sorts the words of standard input in a list and prints them and their number, by the C headers alone.
use std::ffi::{c_void, CStr, CString};
use std::io::Read;
use std::os::raw::{c_char, c_int, c_longlong};

type Handle = *mut c_void;

#[link(name = "vorn_runtime")]
extern "C" {
    fn vorn_runtime_start(options: *const c_void) -> c_int;
    fn vorn_call(shape: *const c_char, function: *const c_void, arguments: *const u64, result: *mut Handle) -> c_int;
    fn vorn_root_add(slot: *mut Handle);
    fn vorn_root_remove(slot: *mut Handle);
    fn vorn_object_new(type_name: *const c_char) -> Handle;
    fn vorn_string_new(text: *const c_char, length: usize) -> Handle;
    fn vorn_string_text(handle: Handle) -> *const c_char;
    fn vorn_error_count() -> usize;
    fn vorn_error_class(index: usize) -> *const c_char;
    fn vorn_error_message(index: usize) -> *const c_char;
    fn vorn_errors_clear();
}

#[link(name = "vorn_collections")]
extern "C" {
    fn vorn_collections_ArrayList_add(list: Handle, value: Handle);
    fn vorn_collections_ArrayList_operator_index(list: Handle, index: c_longlong) -> Handle;
    fn vorn_collections_ArrayList_size(list: Handle) -> c_longlong;
    fn vorn_collections_ArrayList_sort(list: Handle);
}

/// A rooted slot: what stands in it is alive. It is boxed, so that it stays where it was registered.
struct Root(Box<Handle>);

impl Root {
    fn new() -> Root {
        let mut slot = Box::new(std::ptr::null_mut());
        unsafe { vorn_root_add(&mut *slot) };
        Root(slot)
    }
}

impl Drop for Root {
    fn drop(&mut self) {
        unsafe { vorn_root_remove(&mut *self.0) };
    }
}

fn text(pointer: *const c_char) -> String {
    unsafe { CStr::from_ptr(pointer) }.to_string_lossy().into_owned()
}

/// Calls a function of the shape, whose result goes to a slot. What it raises or throws comes back as a text.
fn call(shape: &str, function: *const c_void, arguments: &[u64], result: Option<&mut Root>) -> Result<(), String> {
    let shape = CString::new(shape).unwrap();
    let slot = result.map_or(std::ptr::null_mut(), |root| &mut *root.0 as *mut Handle);
    unsafe {
        if vorn_call(shape.as_ptr(), function, arguments.as_ptr(), slot) == 0 {
            return Ok(());
        }
        let newest = vorn_error_count() - 1;
        let error = format!("{}: {}", text(vorn_error_class(newest)), text(vorn_error_message(newest)));
        vorn_errors_clear();
        Err(error)
    }
}

fn main() -> Result<(), String> {
    unsafe { vorn_runtime_start(std::ptr::null()) };
    let (mut list, mut word) = (Root::new(), Root::new());
    let class = CString::new("ArrayList<String>").unwrap();
    call("h(h)", vorn_object_new as *const c_void, &[class.as_ptr() as u64], Some(&mut list))?;

    let mut input = String::new();
    std::io::stdin().read_to_string(&mut input).map_err(|error| error.to_string())?;
    for each in input.split_whitespace() {
        let arguments = [each.as_ptr() as u64, each.len() as u64];
        call("h(hi)", vorn_string_new as *const c_void, &arguments, Some(&mut word))?;
        call("v(hh)", vorn_collections_ArrayList_add as *const c_void, &[*list.0 as u64, *word.0 as u64], None)?;
    }
    call("v(h)", vorn_collections_ArrayList_sort as *const c_void, &[*list.0 as u64], None)?;

    let element = vorn_collections_ArrayList_operator_index as *const c_void;
    let size = unsafe { vorn_collections_ArrayList_size(*list.0) };
    for index in 0..size {
        call("h(hi)", element, &[*list.0 as u64, index as u64], Some(&mut word))?;
        println!("{}", text(unsafe { vorn_string_text(*word.0) }));
    }
    println!("{} words", size);
    println!("{}", call("h(hi)", element, &[*list.0 as u64, size as u64], Some(&mut word)).unwrap_err());
    Ok(())
}
